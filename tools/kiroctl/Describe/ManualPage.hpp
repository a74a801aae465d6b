#pragma once

#include "CommandTree.hpp"

#include <string>

namespace Vela::Kiroctl
{

/// The tool's page of the manual, as troff.
std::string WriteManualPage(const CommandDescription& tool, const std::string& version);

} // namespace Vela::Kiroctl
