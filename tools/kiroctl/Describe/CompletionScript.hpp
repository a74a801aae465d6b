#pragma once

#include "CommandTree.hpp"

#include <string>

namespace Vela::Kiroctl
{

/// Functions that complete the tool's command line in a shell. What they do not know they leave to the completion of
/// file names.
std::string WriteBashCompletion(const CommandDescription& tool);
std::string WriteZshCompletion(const CommandDescription& tool);

} // namespace Vela::Kiroctl
