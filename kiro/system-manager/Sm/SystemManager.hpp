#pragma once

#include <Sm/ComponentsController.hpp>
#include <Sm/Data/ProcessData.hpp>
#include <Sm/ISystemManagerHost.hpp>
#include <Sm/KiroSecurityNotifications.hpp>
#include <Sm/LifecycleGate.hpp>
#include <Sm/ProcessesController.hpp>
#include <Sm/SlowCallWatcher.hpp>
#include <Sm/SystemDiagnostics.hpp>
#include <Sm/SystemManagerNotifications.hpp>
#include <Sm/SystemSnapshot.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>

#include <chrono>
#include <memory>
#include <vector>

namespace Vela::System::Kiro::Internal::Sm
{

/// Brings the whole system up from its configuration and ends it in order, in the main process; the plain singleton
/// Singleton<SystemManager>, made and deleted by the application.
///
/// SetupSystem and Dispose belong to the application's main thread. The queries, PowerDown, SetEnvironmentVariable and
/// the two requests may come from any thread at any time; queries are answered from the state after the last finished
/// phase.
class SystemManager : private Commons::Diagnostics::Loggable<SystemManager>
{
public:
    SystemManager(ISystemManagerHost& systemManagerHost, const Settings::ProcessSettings& settings,
                  bool isSingleProcess);
    SystemManager(const SystemManager&) = delete;
    SystemManager& operator=(const SystemManager&) = delete;
    /// Disposes.
    ~SystemManager();

    /// Publishes the public and the internal system manager service in this process.
    void PublishServices();

    /// Starts the system, announcing each state.
    /// @throws Exception and others when a required component fails, the configuration is not valid or a process does
    /// not start; what was started stays until Dispose
    void SetupSystem();
    /// The part of SetupSystem up to the end of the settings phase.
    void SetupSystemSettings();
    /// Loads the configuration and hands it to the controllers.
    void LoadConfig();
    /// Makes the current project directory a relative link to the engineering tool's one, where nothing is there yet.
    static void CreateProjectSymlink();

    /// Takes all components down, ends the child processes, unpublishes the services and closes remoting's clients. A
    /// failing step is reported and the others still run; false when there was one. The second call does nothing.
    bool Dispose();
    /// Whether a call of its services has outlasted Dispose: then this object must stay to the end of the process.
    [[nodiscard]] bool IsInUse() const noexcept
    {
        return isInUse;
    }

    /// Runs the power-down phase on the calling thread; changes no other state.
    /// @throws InvalidOperationException during set-up, shutdown or another power-down
    void PowerDown();
    void RequestShutdown();
    void RestartSystem();

    /// What is wrong with the system: a child process has gone, or a call into a component has not returned for longer
    /// than `patience`. Empty when it is healthy.
    [[nodiscard]] String FindFault(std::chrono::milliseconds patience) const;

    /// All children. Main thread.
    [[nodiscard]] std::vector<ProcessState> DescribeProcesses() const;

    [[nodiscard]] const SystemDiagnostics& GetDiagnostics() const noexcept
    {
        return diagnostics;
    }

    [[nodiscard]] const Settings::ProcessSettings& GetSettings() const noexcept;
    /// Sets a variable in every connected process.
    /// @throws ArgumentException for a name of 128 bytes or more, or a value of more than 512; the failure of the first
    /// process that could not be reached, after all the others were
    void SetEnvironmentVariable(const String& name, const String& value);
    /// Writes the current name of a variable and answers true when `name` is an old one.
    bool ResolveDeprecatedVariableName(const String& name, String& result) const;

    /// The names of all connected processes in ascending order.
    [[nodiscard]] std::vector<String> GetApplicationNames() const;
    /// The names of all components of exactly this type in execution order.
    [[nodiscard]] std::vector<String> GetComponentsOfType(const String& componentType) const;
    /// Empty when there is no such component.
    [[nodiscard]] String GetProcessNameOfComponent(const String& componentName) const;
    /// The application's default components, then all others in execution order.
    [[nodiscard]] std::vector<Services::ComponentInfo> GetComponentInfos() const;

private:
    void BringUp();
    void EnterPhase(const char* phase, const char* statusText);
    void PublishSnapshot();
    void ReportRunning(bool hasError);
    void UnpublishServices();

    ISystemManagerHost& host;
    Data::ProcessTable processes;
    const bool singleProcess;
    const Settings::ProcessSettings& processSettings;
    PublishedSnapshot snapshot;
    LifecycleGate gate;
    SystemDiagnostics diagnostics;
    SlowCallWatcher slowCalls;
    ProcessesController processesController;
    ComponentsController componentsController;
    bool stateFlag = false;
    bool areServicesPublished = false;
    bool isDisposed = false;
    /// The set-up has succeeded: what fails from now on fails on the way down.
    bool isRunning = false;
    bool isInUse = false;
    SystemManagerNotifications notifications;
    std::unique_ptr<Security::KiroSecurityNotifications> securityNotifications;
};

} // namespace Vela::System::Kiro::Internal::Sm
