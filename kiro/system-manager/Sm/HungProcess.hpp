#pragma once

#include <Vela/String.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

/// Has a process of the system log the stacks of its threads, so that one sees where a call into it hangs. A process
/// that does not answer is logged. Takes as long as a remote call; never throws.
void LogThreadStacksOf(const String& process) noexcept;

} // namespace Vela::System::Kiro::Internal::Sm
