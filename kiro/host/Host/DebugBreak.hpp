#pragma once

#include <functional>

namespace Vela::System::Kiro::Internal
{

/// Waits until somebody presses a key on standard input or, where that is at its end (a child process reads
/// /dev/null), until a debugger is attached. Returns early when `isEnding` answers true.
void WaitForKeyOrDebugger(const std::function<bool()>& isEnding);

} // namespace Vela::System::Kiro::Internal
