#pragma once

#include "TimelineFile.hpp"

#include <string>

namespace Vela::Kiroctl
{

/// Draws a timeline as one SVG page: processes as lanes, in them components as bars coloured by phase, and as thin
/// lines the time that each waits for others.
std::string Plot(const Timeline& timeline);

} // namespace Vela::Kiroctl
