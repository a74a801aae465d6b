#pragma once

#include <Sm/Data/ProcessData.hpp>
#include <Sm/ISystemManagerHost.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>

#include <atomic>
#include <chrono>
#include <functional>
#include <vector>

namespace Vela::System::Kiro::Internal::Settings
{
class ProcessSettings;
}

namespace Vela::System::Kiro::Internal::Sm
{

/// The children among the processes that were started.
std::vector<ProcessState> DescribeChildren(const Data::ProcessTable& processes);

/// Looks again and again whether all children still live, on a thread of its own. When one has gone, the system ends:
/// the others are killed and this process aborts.
class ProcessesWatchdog : private Commons::Diagnostics::Loggable<ProcessesWatchdog>
{
public:
    /// @param processTable  must not change from Start to Stop
    /// @param abortFunction  ends this process when a child has gone
    ProcessesWatchdog(ISystemManagerHost& systemManagerHost, const Data::ProcessTable& processTable,
                      const Settings::ProcessSettings& settings, std::function<void()> abortFunction = AbortProcess);

    void Start();
    /// Returns when no look is in progress any more.
    void Stop();
    /// One look at the children.
    void Look();

    /// What is wrong: a child has gone, or nobody has looked for longer than the idle time and `patience`. Empty when
    /// all is well. From any thread.
    [[nodiscard]] String FindFault(std::chrono::milliseconds patience) const;

    /// Aborts this process without a report of a crash: why is known.
    static void AbortProcess();

private:
    using Clock = std::chrono::steady_clock;

    ISystemManagerHost& host;
    const Data::ProcessTable& processes;
    const Settings::ProcessSettings& processSettings;
    const std::function<void()> abortProcess;
    std::atomic<bool> isChildGone{false};
    std::atomic<Clock::time_point> lastLook{Clock::time_point()};
    Commons::Threading::WorkerThread thread;
};

} // namespace Vela::System::Kiro::Internal::Sm
