// The basic components of a process: how each one is brought up and taken down.

#include <Host/ApplicationData.hpp>
#include <Host/GuardedSteps.hpp>
#include <Pm/ProcessManager.hpp>
#include <Settings/EnvironmentVariable.hpp>
#include <Settings/SystemDirectory.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/IComponent.hpp>
#include <Vela/System/Kiro/IEnvironmentVariablesProvider.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <cstdio>
#include <utility>

namespace Vela::System::Kiro::Internal
{

using Commons::Environment;

namespace
{

/// More singletons than the platform itself needs are worth a look.
constexpr std::size_t expectedSingletons = 9;

/// The component that contributes environment variables; null when there is none.
std::shared_ptr<IEnvironmentVariablesProvider> FindEnvironmentVariablesProvider(Pm::ProcessManager& processManager)
{
    for (const auto& [name, component] : processManager.GetComponentProvider().GetComponents())
    {
        if (auto provider = std::dynamic_pointer_cast<IEnvironmentVariablesProvider>(component))
        {
            return provider;
        }
    }
    return nullptr;
}

} // namespace

void ApplicationBase::SetupBasicComponents(ApplicationSetupKind kind, ProcessKind processKind)
{
    const bool isMainProcess = processKind == ProcessKind::Main;
    if (Contains(kind, ApplicationSetupKind::Remoting))
    {
        SetupRemoting(isMainProcess);
    }
    if (Contains(kind, ApplicationSetupKind::NotificationManager))
    {
        SetupNotificationManager(isMainProcess);
    }
    if (Contains(kind, ApplicationSetupKind::ProcessManager))
    {
        SetupProcessManager();
    }
    if (Contains(kind, ApplicationSetupKind::SystemConfigurationManager))
    {
        SetupScm();
    }
    if (Contains(kind, ApplicationSetupKind::SystemManager))
    {
        SetupSystemManager(isMainProcess);
        SetupSystem();
    }
}

void ApplicationBase::SetupRemoting()
{
    SetupRemoting(true);
}

void ApplicationBase::SetupRemoting(bool isMainProcess)
{
    const std::int32_t defaultPort = isMainProcess ? -1 : 0;
    const std::int32_t port = data->localTcpPort != 0 ? data->localTcpPort : defaultPort;
    try
    {
        Rsc::RscManager::CreateInstance(GetName(), port, data->settings.GetRscSettings().GetPath(), isMainProcess);
    }
    catch (...)
    {
        data->isDirectoryTaken = isMainProcess && FailureRecord::IsDirectoryTaken();
        throw;
    }
    // Remoting has chosen and checked it.
    const String runtimeDirectory = Environment::GetVariableValueOr(Environment::runtimeDirectoryName, "");
    Commons::Diagnostics::CrashHandler::SetRuntimeDirectory(runtimeDirectory);
    if (isMainProcess)
    {
        Commons::Diagnostics::CrashRecords(runtimeDirectory).RemoveOldest();
    }
}

void ApplicationBase::SetupNotificationManager() const
{
    SetupNotificationManager(true);
}

void ApplicationBase::SetupNotificationManager(bool withBroker) const
{
    Nm::NotificationManagerSetup::Setup(GetName(), withBroker, data->settings.GetNmSettings().GetPath());
}

void ApplicationBase::SetupProcessManager()
{
    Singleton<Pm::ProcessManager>::CreateInstance(*this, data->roles);
    Singleton<Pm::ProcessManager>::GetInstance().Setup();
}

void ApplicationBase::SetupScm()
{
    if (!data->GetDefaultLibraryManager())
    {
        data->SetDefaultLibraryManager(std::make_shared<DefaultLibraryManager>());
    }
    auto& processManager = Singleton<Pm::ProcessManager>::GetInstance();
    const auto manager = data->GetDefaultLibraryManager();
    manager->AddDefaultComponents(Environment::GetLibrariesDirectory(),
                                  Environment::GetVariableValueOr(Settings::SystemDirectory::variableName, ""));
    manager->BuildUpDefaultComponents(processManager);

    const auto provider = FindEnvironmentVariablesProvider(processManager);
    if (provider)
    {
        for (const auto& [name, value] : provider->GetEnvironmentVariables())
        {
            // What the settings define themselves stays.
            data->settings.GetEnvironmentVariables().AddVariable(Settings::EnvironmentVariable(name, value, false),
                                                                 false);
        }
    }
    data->settings.ResolveAndPublish(true);
    if (provider)
    {
        provider->OnEnvironmentVariablesTakenOver();
    }
}

void ApplicationBase::SetupSystemManager(bool isMainProcess)
{
    using SystemManagerSingleton = Singleton<Sm::SystemManager>;
    const Settings::ProcessSettings& settings = data->settings.GetProcessSettings();
    const bool singleProcess = data->isSingleProcessGiven ? data->singleProcess : settings.IsSingleProcess();
    if (SystemManagerSingleton::TryGetInstance() != nullptr)
    {
        std::printf("ERROR: Singleton instance of type '%s' was created yet!\n",
                    GetTypeName<Sm::SystemManager>().c_str());
        std::fflush(stdout);
        SystemManagerSingleton::DisposeInstance();
    }
    auto& systemManager = SystemManagerSingleton::CreateInstance(data->roles, settings, singleProcess);
    if (data->supervision)
    {
        data->supervision->SetExamination([&systemManager](std::chrono::milliseconds patience)
                                          { return systemManager.FindFault(patience); });
    }
    if (isMainProcess)
    {
        systemManager.PublishServices();
    }
}

void ApplicationBase::SetupSystem()
{
    Singleton<Sm::SystemManager>::GetInstance().SetupSystem();
}

void ApplicationBase::DisposeInternal()
{
    GuardedSteps steps;
    steps.Run([this] { DisposeSystemManager(); });
    steps.Run([this] { DisposeDefaultComponents(); });
    steps.Run([this] { DisposeNotificationManager(); });
    steps.Run([this] { DisposeRemoting(); });
    steps.Run([this] { DisposeCheckAppDomainSingletons(); });
    steps.Run([this] { DisposeProcessManager(); });
    steps.ThrowFirstFailure();
}

void ApplicationBase::DisposeSystemManager()
{
    if (auto* systemManager = Singleton<Sm::SystemManager>::TryGetInstance())
    {
        GuardedSteps steps;
        steps.Run(
            [systemManager]
            {
                if (!systemManager->Dispose())
                {
                    throw Exception("The system was not taken down in order.");
                }
            });
        if (data->supervision)
        {
            data->supervision->SetExamination({});
        }
        if (systemManager->IsInUse())
        {
            data->hasRunningCalls = true;
        }
        else
        {
            steps.Run([] { Singleton<Sm::SystemManager>::DisposeInstance(); });
        }
        steps.ThrowFirstFailure();
    }
}

void ApplicationBase::DisposeDefaultComponents()
{
    auto* processManager = Singleton<Pm::ProcessManager>::TryGetInstance();
    const auto manager = data->GetDefaultLibraryManager();
    if (processManager != nullptr && manager)
    {
        manager->TearDownDefaultComponents(*processManager);
        data->SetDefaultLibraryManager(nullptr);
    }
}

void ApplicationBase::DisposeNotificationManager()
{
    Nm::NotificationManagerSetup::Dispose();
}

void ApplicationBase::DisposeRemoting()
{
    if (!Rsc::RscManager::DisposeInstance())
    {
        const Exception failure("A remote call is still running in this process.");
        const bool isRecorded = std::exchange(data->hasRunningCalls, true);
        if (data->supervision && !isRecorded)
        {
            data->failureRecord.Write(GetName(), "not taken down in order", failure.GetMessage(), {}, {});
        }
        throw failure;
    }
}

void ApplicationBase::DisposeCheckAppDomainSingletons()
{
    const AppDomain* domain = Singleton<AppDomain>::TryGetInstance();
    const std::vector<String> names = domain != nullptr ? domain->GetSingletonsTypeName() : std::vector<String>();
    if (names.size() <= expectedSingletons)
    {
        return;
    }
    log.Debug("Before unloading libraries: the following AppDomainSingletons were not disposed yet:");
    for (const String& name : names)
    {
        log.Debug("+ {}", name);
    }
    log.Error("The following AppDomainSingletons were not disposed yet but should:");
    for (const String& name : names)
    {
        // The platform's own and the application object outlive this point.
        if (!name.starts_with("Vela::System") && !name.ends_with("Application"))
        {
            log.Error("+ {}", name);
        }
    }
}

void ApplicationBase::DisposeProcessManager()
{
    if (auto* processManager = Singleton<Pm::ProcessManager>::TryGetInstance())
    {
        GuardedSteps steps;
        steps.Run([processManager] { processManager->Dispose(); });
        if (!data->hasRunningCalls)
        {
            steps.Run([] { Singleton<Pm::ProcessManager>::DisposeInstance(); });
        }
        steps.ThrowFirstFailure();
    }
}

void ApplicationBase::DisposeCommons()
{
    GuardedSteps steps;
    steps.Run([this] { data->signalHandler.reset(); });
    steps.Run([] { Commons::Diagnostics::LogManager::DisposeInstance(); });
    steps.Run([] { Environment::Dispose(); });
    steps.ThrowFirstFailure();
}

} // namespace Vela::System::Kiro::Internal
