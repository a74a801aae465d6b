#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Chrono/TimeoutWatch.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <Runtime/SpawnPlan.hpp>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>

#include <mutex>
#include <utility>

// Some versions of the C library declare these without regard to C++.
extern "C"
{
#include <sys/pidfd.h>
}

namespace Vela::System::Commons::Runtime
{

String ProcessExit::ToString() const
{
    if (!bySignal)
    {
        return fmt::format("exit code {0}", code);
    }
    const char* description = ::sigdescr_np(code);
    return fmt::format("signal {0} ({1})", code, description == nullptr ? "unknown" : description);
}

struct Process::Data
{
    mutable std::mutex mutex;
    pid_t id = 0;
    UniqueFd exitDescriptor;
    bool hasOwnGroup = false;
    /// Until the child is reaped its id, and with it the id of its group, belongs to nobody else.
    bool isReaped = false;
    bool hasExited = false;
    ProcessExit exit;

    /// Looks for the exit without reaping, or reaps; false when the child still runs.
    bool LookForExit(int options);
};

bool Process::Data::LookForExit(int options)
{
    siginfo_t info{};
    const auto descriptor = static_cast<id_t>(exitDescriptor.Get());
    const int result =
        RetryInterrupted([&] { return ::waitid(P_PIDFD, descriptor, &info, WEXITED | WNOHANG | options); });
    if (result != 0)
    {
        // Somebody else has reaped it; how it ended is lost.
        hasExited = true;
        isReaped = true;
        return true;
    }
    if (info.si_pid == 0)
    {
        return false;
    }
    hasExited = true;
    exit = {info.si_code != CLD_EXITED, info.si_status};
    isReaped = (options & WNOWAIT) == 0;
    return true;
}

Process::Process()
    : data(std::make_unique<Data>())
{
}

Process::~Process()
{
    if (data->id != 0 && !data->isReaped)
    {
        data->LookForExit(0);
    }
}

void Process::Start(const String& workingDirectory, const String& fileName, const String& arguments,
                    const ProcessStartOptions& options)
{
    const std::lock_guard lock(data->mutex);
    if (data->id != 0)
    {
        throw InvalidOperationException("Process '{0}' was started already", fileName);
    }
    const SpawnPlan plan(SpawnPlan::Kind::Child, workingDirectory, fileName, arguments, options);
    pid_t id = 0;
    if (const int errorNumber = plan.Spawn(id); errorNumber != 0)
    {
        ThrowStartFailed(fileName, errorNumber);
    }
    UniqueFd descriptor(::pidfd_open(id, 0));
    if (!descriptor.IsValid())
    {
        const int errorNumber = errno;
        ::kill(id, SIGKILL);
        RetryInterrupted([&] { return ::waitpid(id, nullptr, 0); });
        ThrowSystemError(fmt::format("Could not watch process '{0}'", fileName), errorNumber);
    }
    data->exitDescriptor = std::move(descriptor);
    data->hasOwnGroup = options.hasOwnGroup;
    data->id = id;
}

bool Process::IsStarted() const
{
    const std::lock_guard lock(data->mutex);
    return data->id != 0;
}

pid_t Process::GetId() const
{
    const std::lock_guard lock(data->mutex);
    return data->id;
}

bool Process::HasExited() const
{
    const std::lock_guard lock(data->mutex);
    return data->id != 0 && (data->hasExited || data->LookForExit(WNOWAIT));
}

ProcessExit Process::GetExit() const
{
    const std::lock_guard lock(data->mutex);
    return data->exit;
}

int Process::GetExitDescriptor() const
{
    const std::lock_guard lock(data->mutex);
    return data->exitDescriptor.Get();
}

bool Process::WaitForExit(int milliseconds) const
{
    const Chrono::TimeoutWatch watch{std::chrono::milliseconds(milliseconds)};
    pollfd exited{GetExitDescriptor(), POLLIN, 0};
    while (IsStarted() && !HasExited())
    {
        if (milliseconds >= 0 && watch.HasTimeout())
        {
            return false;
        }
        static_cast<void>(::poll(&exited, 1, milliseconds < 0 ? -1 : static_cast<int>(watch.GetRemaining().count())));
    }
    return IsStarted();
}

void Process::Kill()
{
    const std::lock_guard lock(data->mutex);
    if (data->id == 0 || data->isReaped)
    {
        return;
    }
    if (!data->hasExited)
    {
        static_cast<void>(::pidfd_send_signal(data->exitDescriptor.Get(), SIGKILL, nullptr, 0));
        // Death is certain, but may wait for a driver; whoever ends a system must not wait for ever.
        constexpr int patience = 2000;
        pollfd exited{data->exitDescriptor.Get(), POLLIN, 0};
        RetryInterrupted([&] { return ::poll(&exited, 1, patience); });
    }
    if (data->hasOwnGroup)
    {
        ::kill(-data->id, SIGKILL);
    }
    data->LookForExit(0);
}

} // namespace Vela::System::Commons::Runtime
