#pragma once

#include <Sm/Data/ProcessData.hpp>
#include <Sm/ISystemManagerHost.hpp>
#include <Sm/ProcessConnector.hpp>
#include <Sm/SlowCallWatcher.hpp>
#include <Sm/SystemSnapshot.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/TimeoutWatch.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace Vela::System::Kiro::Internal::Settings
{
class ProcessSettings;
}

namespace Vela::System::Kiro::Internal::Sm::Config
{
class KiroConfiguration;
}

namespace Vela::System::Kiro::Internal::Sm
{

/// Turns the configured processes into running ones, watches them and ends them. External processes are left alone.
///
/// All operations belong to the main thread, except SetEnvironmentVariable and the watchdog's, which may come from any.
class ProcessesController : private Commons::Diagnostics::Loggable<ProcessesController>
{
public:
    /// @param processTable  the system manager's, filled by SetupConfig
    /// @param abortFunction  ends this process when a child has died
    ProcessesController(ISystemManagerHost& systemManagerHost, Data::ProcessTable& processTable,
                        const Settings::ProcessSettings& settings, SlowCallWatcher& slowCallWatcher,
                        ProcessConnector processConnector = ConnectToProcess,
                        std::function<void()> abortFunction = AbortProcess);
    ProcessesController(const ProcessesController&) = delete;
    ProcessesController& operator=(const ProcessesController&) = delete;

    /// Fills the process table. The main process has an entry in any case.
    /// @param singleProcess  all entries stand for the main process
    void SetupConfig(const Config::KiroConfiguration& configuration, bool singleProcess);
    /// What SetupConfig does, for tools that only want to know what would happen.
    static void FillTable(const Config::KiroConfiguration& configuration, bool singleProcess,
                          const String& mainProcessName, Data::ProcessTable& table);

    /// Starts the children, connects to all processes and starts the watchdog. On failure the children that were
    /// started stay until StopProcesses.
    /// @throws InvalidOperationException "Could not start all processes"; Exception when a child cannot be started
    void StartProcesses();
    /// @throws Exception for the first library that a process could not load
    void LoadLibraries();
    /// A library that cannot be unloaded is logged.
    void UnloadLibraries();

    /// Sets a variable in each of the processes, in name order.
    /// @throws ArgumentException for a name of 128 or a value of 512 bytes or more; the first process's exception,
    /// after all the others were told
    static void SetEnvironmentVariable(const ServiceTable& services, const String& name, const String& value);

    /// Stops the watchdog, asks all processes to end, waits for the children no longer than the stop wait time in all,
    /// kills those that are left and releases the connections. May be repeated.
    void StopProcesses();

    /// One look at the children: when one has exited, kills all others and aborts this process.
    void ProcessesWatchdogRun();

    /// What is wrong with the watch over the children: one of them has gone, or nobody has looked for longer than the
    /// watchdog's idle time and `patience`. Empty when all is well. From any thread.
    [[nodiscard]] String FindFault(std::chrono::milliseconds patience) const;

    /// The children that were started. Main thread or watchdog.
    [[nodiscard]] std::vector<ProcessState> DescribeProcesses() const;

    [[nodiscard]] const ServiceTable& GetServices() const noexcept;

    /// Aborts this process without a report of a crash: why is known.
    static void AbortProcess();

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool IsMainProcess(const Data::ProcessData& process) const;
    static void WarnOfIneffectiveAttributes(const Data::ProcessData& process, bool isMain,
                                            const Commons::Xml::XmlPosition& position);
    void StartChild(Data::ProcessData& process);
    bool ConnectAll(const Commons::Chrono::TimeoutWatch& watch);
    bool Connect(Data::ProcessData& process, std::chrono::milliseconds limit, std::span<const int> wakeDescriptors);
    /// The descriptors that tell of the end of the children that still live.
    [[nodiscard]] std::vector<int> GetExitDescriptors() const;
    void RequestShutdownOf(const Data::ProcessData& process) noexcept;
    void LogShutdownFailure(const String& processName) const noexcept;
    void AwaitExits(const Commons::Chrono::TimeoutWatch& watch) const;

    ISystemManagerHost& host;
    Data::ProcessTable& processes;
    const Settings::ProcessSettings& processSettings;
    /// Steps of the journal for children that do not answer yet.
    std::map<String, StepJournal::Entry*> starting;
    SlowCallWatcher& slowCalls;
    const ProcessConnector connector;
    const std::function<void()> abortProcess;
    ServiceTable services;
    std::atomic<bool> isChildGone{false};
    std::atomic<Clock::time_point> lastLook{Clock::time_point()};
    Commons::Threading::WorkerThread watchdog;
};

} // namespace Vela::System::Kiro::Internal::Sm
