#pragma once

#include <Sm/Data/ProcessData.hpp>
#include <Sm/ISystemManagerHost.hpp>
#include <Sm/ProcessConnector.hpp>
#include <Sm/ProcessesWatchdog.hpp>
#include <Sm/SlowCallWatcher.hpp>
#include <Sm/SystemSnapshot.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/TimeoutWatch.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

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

/// Turns the configured processes into running ones, has them watched and ends them. External processes are left alone.
///
/// All operations belong to the main thread, except SetEnvironmentVariable, which may come from any.
class ProcessesController : private Commons::Diagnostics::Loggable<ProcessesController>
{
public:
    using ProgressFunction = std::function<void()>;

    /// @param processTable  the system manager's, filled by SetupConfig
    /// @param abortFunction  ends this process when a child has died
    ProcessesController(ISystemManagerHost& systemManagerHost, Data::ProcessTable& processTable,
                        const Settings::ProcessSettings& settings, SlowCallWatcher& slowCallWatcher,
                        ProcessConnector processConnector = ConnectToProcess,
                        std::function<void()> abortFunction = ProcessesWatchdog::AbortProcess);
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
    /// @param onProgress  is called when all children have been started, and when more of them have been reached
    /// @throws InvalidOperationException "Could not start all processes"; Exception when a child cannot be started
    void StartProcesses(const ProgressFunction& onProgress = [] {});
    /// @throws Exception for the first library that a process could not load
    void LoadLibraries();
    /// A library that cannot be unloaded is logged.
    void UnloadLibraries();

    /// Sets a variable in each of the processes, in name order.
    /// @throws ArgumentException for a name of 128 bytes or more, or a value of more than 512; the first process's
    /// exception, after all the others were told
    static void SetEnvironmentVariable(const ServiceTable& services, const String& name, const String& value);

    /// Stops the watchdog, asks all processes to end, waits for the children no longer than the stop wait time in all,
    /// kills those that are left and releases the connections. May be repeated.
    void StopProcesses();

    [[nodiscard]] const ServiceTable& GetServices() const noexcept;

    [[nodiscard]] const ProcessesWatchdog& GetWatchdog() const noexcept
    {
        return watchdog;
    }

private:
    [[nodiscard]] bool IsMainProcess(const Data::ProcessData& process) const;
    static void WarnOfIneffectiveAttributes(const Data::ProcessData& process, bool isMain,
                                            const Commons::Xml::XmlPosition& position);
    void StartChild(Data::ProcessData& process);
    /// The children that have not been reached will not be.
    void GiveUpStarting() noexcept;
    bool ConnectAll(const Commons::Chrono::TimeoutWatch& watch, const ProgressFunction& onProgress);
    bool Connect(Data::ProcessData& process, std::chrono::milliseconds limit, std::span<const int> wakeDescriptors);
    /// The descriptors that tell of the end of the children that still live.
    [[nodiscard]] std::vector<int> GetExitDescriptors() const;
    /// Calls `action` with the service and the name of each connected process and the name and data of each of its
    /// libraries.
    template <typename Action>
    void ForEachLibrary(Action&& action);
    void RequestShutdownOf(const Data::ProcessData& process) noexcept;
    void LogShutdownFailure(const String& processName) const noexcept;
    void AwaitExits(const Commons::Chrono::TimeoutWatch& watch) const;
    static void ReportEnd(const Data::ProcessData& process) noexcept;

    ISystemManagerHost& host;
    Data::ProcessTable& processes;
    const Settings::ProcessSettings& processSettings;
    /// Steps of the journal for children that do not answer yet.
    std::map<String, StepJournal::Entry*> starting;
    SlowCallWatcher& slowCalls;
    const ProcessConnector connector;
    ServiceTable services;
    ProcessesWatchdog watchdog;
};

} // namespace Vela::System::Kiro::Internal::Sm
