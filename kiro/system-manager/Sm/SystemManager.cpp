#include <Config/KiroConfiguration.hpp>
#include <Config/KiroConfigurationLoader.hpp>
#include <Settings/ProcessSettings.hpp>
#include <Sm/HungProcess.hpp>
#include <Sm/Services/Internal/SystemDiagnosticsServiceImpl.hpp>
#include <Sm/Services/Internal/SystemManagerServiceImpl.hpp>
#include <Sm/Services/SystemManagerServiceImpl.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Nm/NotificationManager.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

using NmPayload::Kiro::SystemManagerState;

SystemManager::SystemManager(ISystemManagerHost& systemManagerHost, const Settings::ProcessSettings& settings,
                             bool isSingleProcess)
    : host(systemManagerHost)
    , singleProcess(isSingleProcess)
    , processSettings(settings)
    , diagnostics(host.GetName(), host.GetConfigPath())
    , slowCalls(settings.GetSlowStepTime(), LogThreadStacksOf, &diagnostics.GetJournal())
    , processesController(host, processes, settings, slowCalls)
    , componentsController(host, processes, slowCalls)
{
    if (AppDomainSingleton<Nm::NotificationManager>::TryGetInstance() != nullptr)
    {
        securityNotifications = std::make_unique<Security::KiroSecurityNotifications>();
    }
}

SystemManager::~SystemManager()
{
    Dispose();
}

void SystemManager::PublishServices()
{
    const auto publish = [](Rsc::IRscServiceFactory& factory)
    {
        Rsc::ServiceManager::PublishService(factory.GetName(), factory.GetInterfaceName(), factory);
    };
    areServicesPublished = true;
    publish(Services::SystemManagerServiceFactory::GetInstance());
    publish(Services::Internal::SystemManagerServiceFactory::GetInstance());
    publish(Services::Internal::SystemDiagnosticsServiceFactory::GetInstance());
}

void SystemManager::UnpublishServices()
{
    if (!areServicesPublished)
    {
        return;
    }
    areServicesPublished = false;
    const auto unpublish = [](Rsc::IRscServiceFactory& factory)
    {
        return Rsc::ServiceManager::UnpublishService(factory.GetName(), factory.GetInterfaceName());
    };
    // Until each is known to have drained: one that is not even asked may have calls as well.
    isInUse = true;
    const bool isPublicDrained = unpublish(Services::SystemManagerServiceFactory::GetInstance());
    const bool isInternalDrained = unpublish(Services::Internal::SystemManagerServiceFactory::GetInstance());
    const bool isDiagnosticsDrained = unpublish(Services::Internal::SystemDiagnosticsServiceFactory::GetInstance());
    isInUse = !isPublicDrained || !isInternalDrained || !isDiagnosticsDrained;
    if (isInUse)
    {
        throw Exception("A call of a system manager service is still in progress.");
    }
}

void SystemManager::LoadConfig()
{
    const String path = host.GetConfigPath();
    log.Debug("Loading configuration from: {0}", path);
    Config::KiroConfiguration configuration;
    Config::KiroConfigurationLoader::Load(path, singleProcess, true, configuration);
    processesController.SetupConfig(configuration, singleProcess);
    componentsController.SetupConfig(configuration, singleProcess);
}

void SystemManager::SetupSystemSettings()
{
    EnterPhase("load-config", "Loading the configuration");
    LoadConfig();
    diagnostics.PublishProcesses(processes);
    diagnostics.PublishComponents(processes, {});
    EnterPhase("start-processes", "Starting the processes");
    processesController.StartProcesses([this] { diagnostics.PublishProcesses(processes); });
    PublishSnapshot();
    EnterPhase("load-libraries", "Loading the libraries");
    processesController.LoadLibraries();
    EnterPhase("create", "Creating the components");
    componentsController.CreateComponents();
    PublishSnapshot();
    diagnostics.PublishComponents(processes, componentsController.GetExecutionList());
    EnterPhase("settings", "Setting up the components");
    componentsController.SetupComponentsSettings();
    PublishSnapshot();
}

void SystemManager::EnterPhase(const char* phase, const char* statusText)
{
    diagnostics.GetJournal().BeginPhase(phase);
    host.ReportStatus(statusText);
}

void SystemManager::SetupSystem()
{
    const std::lock_guard walk(gate);
    try
    {
        BringUp();
        isRunning = true;
        diagnostics.GetJournal().BeginPhase(nullptr);
    }
    catch (...)
    {
        diagnostics.NoteFailure(CaughtException::Current().GetText());
        diagnostics.GetJournal().BeginPhase(nullptr);
        diagnostics.SetState("failed", true);
        throw;
    }
}

void SystemManager::BringUp()
{
    notifications.SendStartupNotification();
    notifications.SendStateNotification(SystemManagerState::Starting, false, stateFlag);
    CreateProjectSymlink();
    SetupSystemSettings();
    notifications.SendStateNotification(SystemManagerState::SettingsReady, false, stateFlag);
    diagnostics.SetState("settings-ready");

    bool hasError = false;
    EnterPhase("config", "Configuring the components");
    if (!componentsController.SetupComponentsConfig())
    {
        hasError = true;
        notifications.SendStateNotification(SystemManagerState::SettingsReady, hasError, stateFlag);
    }
    PublishSnapshot();
    notifications.SendStateNotification(SystemManagerState::ConfigReady, hasError, stateFlag);
    diagnostics.SetState("config-ready", hasError);
    Nm::NotificationManagerSetup::StartDispatching();

    EnterPhase("start", "Starting the components");
    if (!componentsController.StartComponents())
    {
        hasError = true;
        notifications.SendStateNotification(SystemManagerState::Running, hasError, stateFlag);
    }
    PublishSnapshot();
    diagnostics.SetState("running", hasError);
    notifications.SendStateNotification(SystemManagerState::Running, hasError, stateFlag);
    stateFlag = false;
    ReportRunning(hasError);
}

void SystemManager::ReportRunning(bool hasError)
{
    const auto current = snapshot.Get();
    host.ReportStatus(fmt::format("{0}: {1} components in {2} processes", hasError ? "Running with errors" : "Running",
                                  current->components.size(), current->services.size()));
}

bool SystemManager::Dispose()
{
    if (isDisposed)
    {
        return true;
    }
    isDisposed = true;
    // Held to the end: from now on nobody may ask for another walk over the components.
    gate.lock();

    bool isOrderly = true;
    const auto guard = [&isOrderly](auto&& step)
    {
        try
        {
            step();
        }
        catch (...)
        {
            isOrderly = false;
            log.Error("{0}", CaughtException::Current().Describe(
                                 "Exception occurs while shutting down the system: {0}",
                                 "Unspecified exception occurs while shutting down the system"));
        }
    };
    auto& journal = diagnostics.GetJournal();
    guard([this] { diagnostics.SetState("stopping"); });
    guard([this] { EnterPhase("stop", "Stopping the components"); });
    guard([this] { componentsController.StopComponents(); });
    guard([this] { EnterPhase("reset-config", "Taking down the components"); });
    guard([this] { componentsController.ResetComponentsConfig(); });
    journal.BeginPhase("dispose");
    guard([this] { componentsController.DisposeComponents(); });
    journal.BeginPhase("destroy");
    guard([this] { componentsController.DestroyComponents(); });
    guard([this] { EnterPhase("stop-processes", "Stopping the processes"); });
    guard([this] { processesController.StopProcesses(); });
    guard([this] { PublishSnapshot(); });
    guard([this] { UnpublishServices(); });
    guard([] { AppDomainSingleton<Rsc::RscManager>::GetInstance().CloseAllClients(false); });
    if (!isOrderly && isRunning)
    {
        guard([this] { host.RecordFailure("not taken down in order", DescribeProcesses()); });
    }
    processes.clear();
    return isOrderly;
}

void SystemManager::PowerDown()
{
    const std::unique_lock walk(gate, std::try_to_lock);
    if (!walk)
    {
        throw InvalidOperationException(
            "Power down is refused: the system is being set up, shut down or powered down at the moment.");
    }
    diagnostics.GetJournal().BeginPhase("power-down");
    componentsController.PowerDownComponents();
    diagnostics.GetJournal().BeginPhase(nullptr);
}

void SystemManager::RequestShutdown()
{
    host.RequestShutdown();
}

void SystemManager::RestartSystem()
{
    host.RestartSystem();
}

String SystemManager::FindFault(std::chrono::milliseconds patience) const
{
    String fault = processesController.GetWatchdog().FindFault(patience);
    return fault.empty() ? slowCalls.FindCallBeyond(patience) : fault;
}

std::vector<ProcessState> SystemManager::DescribeProcesses() const
{
    return DescribeChildren(processes);
}

const Settings::ProcessSettings& SystemManager::GetSettings() const noexcept
{
    return processSettings;
}

void SystemManager::SetEnvironmentVariable(const String& name, const String& value)
{
    ProcessesController::SetEnvironmentVariable(snapshot.Get()->services, name, value);
}

bool SystemManager::ResolveDeprecatedVariableName(const String& name, String& result) const
{
    return host.ResolveDeprecatedVariableName(name, result);
}

void SystemManager::PublishSnapshot()
{
    snapshot.Publish(SystemSnapshot::Make(processesController.GetServices(), componentsController.GetExecutionList()));
}

std::vector<String> SystemManager::GetApplicationNames() const
{
    return snapshot.Get()->GetApplicationNames();
}

std::vector<String> SystemManager::GetComponentsOfType(const String& componentType) const
{
    return snapshot.Get()->GetComponentsOfType(componentType);
}

String SystemManager::GetProcessNameOfComponent(const String& componentName) const
{
    return snapshot.Get()->GetProcessNameOfComponent(componentName);
}

std::vector<Services::ComponentInfo> SystemManager::GetComponentInfos() const
{
    return snapshot.Get()->GetComponentInfos(host.GetDefaultComponentInfos());
}

} // namespace Vela::System::Kiro::Internal::Sm
