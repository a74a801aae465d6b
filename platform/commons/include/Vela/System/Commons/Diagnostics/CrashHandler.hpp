#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <cstddef>

namespace Vela::System::Commons::Diagnostics
{

/// What a process still says when it crashes: the signal, the step and component of the crashing thread's Breadcrumb,
/// its stack, and the last messages of the log. It goes to the standard error output, and into a record of the runtime
/// directory (CrashRecords) once that is known. Then the process dies of the same signal as without the handler.
///
/// Handled are SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT, unless somebody else handles them already. A report takes
/// three seconds at most; what is not said by then stays unsaid.
class VELA_COMMONS_API CrashHandler
{
public:
    /// For the whole process, to its end. In a build with a sanitizer nothing happens: it makes reports of its own.
    static void Install(const String& processName);
    /// From now on a crash leaves a record in that directory, which must be there.
    static void SetRuntimeDirectory(const String& path);
    /// The process is about to abort for a reason that has been told: no report any more.
    static void Withdraw() noexcept;
};

/// A stack for signal handlers of the calling thread, as long as the object lives: without one a thread that has used
/// up its own stack dies without a word. Costs no memory before it is used; nothing happens without a crash handler.
class VELA_COMMONS_API AlternateSignalStack
{
public:
    AlternateSignalStack() noexcept;
    AlternateSignalStack(const AlternateSignalStack&) = delete;
    AlternateSignalStack& operator=(const AlternateSignalStack&) = delete;
    ~AlternateSignalStack();

private:
    void* memory = nullptr;
    std::size_t size = 0;
};

} // namespace Vela::System::Commons::Diagnostics
