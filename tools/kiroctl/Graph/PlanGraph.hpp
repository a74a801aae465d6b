#pragma once

#include "Output/Json.hpp"

#include <string>

namespace Vela::Kiroctl
{

/// A plan as a picture: processes with their components in start order, and the libraries that these come from.
std::string DrawSvg(const Json& plan);
/// The same for Graphviz.
std::string WriteDot(const Json& plan);
/// The same as facts: nodes and edges.
Json ListGraph(const Json& plan);

} // namespace Vela::Kiroctl
