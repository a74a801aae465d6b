#pragma once

#include "ExitCode.hpp"

namespace Vela::Kiroctl
{

/// Reads the arguments and runs the command that they name; all messages are written by then.
ExitCode RunCommandLine(int argc, const char* const* argv);

} // namespace Vela::Kiroctl
