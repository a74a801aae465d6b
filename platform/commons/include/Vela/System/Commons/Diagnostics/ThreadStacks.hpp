#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <sys/types.h>

#include <cstddef>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// What a thread is at.
struct ThreadStack
{
    pid_t id = 0;
    String name;
    /// What its innermost Breadcrumb says, such as "Start of component 'Pump'"; empty without one.
    String activity;
    /// Innermost first; empty when the thread did not answer.
    std::vector<String> frames;
};

/// The stacks of all threads of this process but the calling one.
///
/// Each thread is asked by a real-time signal of its own and looks at its stack itself. System calls that can be are
/// restarted; others (poll, sleep) end early with EINTR, as for any signal. A thread that holds the signal back, or is
/// deep in the kernel, does not answer: it is waited for half a second, all of them together for three seconds.
class VELA_COMMONS_API ThreadStacks
{
public:
    static constexpr std::size_t mostThreads = 256;

    /// One call at a time; others wait.
    /// @throws InvalidOperationException when the signal is somebody else's, or a thread is still at an earlier look
    [[nodiscard]] static std::vector<ThreadStack> Collect();
    /// Writes them to the log, as a warning for each thread.
    /// @return the number of threads
    static std::size_t Log();
};

} // namespace Vela::System::Commons::Diagnostics
