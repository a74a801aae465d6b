#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

using Service = IProcessManagerService;

IProcessManagerService::~IProcessManagerService() = default;
ProcessManagerServiceProxy::~ProcessManagerServiceProxy() = default;

void ProcessManagerServiceProxy::ShutdownProcess()
{
    Invoke<&Service::ShutdownProcess>();
}

bool ProcessManagerServiceProxy::LoadLibrary(const Text& libraryName, const Text& libraryPath)
{
    return Invoke<&Service::LoadLibrary>(libraryName, libraryPath);
}

void ProcessManagerServiceProxy::UnloadLibrary(const Text& libraryName)
{
    Invoke<&Service::UnloadLibrary>(libraryName);
}

ComponentProperties ProcessManagerServiceProxy::CreateComponent(const Text& componentType, const Text& componentName,
                                                                const Text& libraryName)
{
    return Invoke<&Service::CreateComponent>(componentType, componentName, libraryName);
}

void ProcessManagerServiceProxy::DestroyComponent(const Text& componentName)
{
    Invoke<&Service::DestroyComponent>(componentName);
}

void ProcessManagerServiceProxy::InitializeComponent(const Text& componentName)
{
    Invoke<&Service::InitializeComponent>(componentName);
}

void ProcessManagerServiceProxy::LoadComponentSettings(const Text& componentName, const Text& settingsPath)
{
    Invoke<&Service::LoadComponentSettings>(componentName, settingsPath);
}

void ProcessManagerServiceProxy::SetupComponentSettings(const Text& componentName)
{
    Invoke<&Service::SetupComponentSettings>(componentName);
}

void ProcessManagerServiceProxy::SubscribeComponentServices(const Text& componentName)
{
    Invoke<&Service::SubscribeComponentServices>(componentName);
}

void ProcessManagerServiceProxy::LoadComponentConfig(const Text& componentName)
{
    Invoke<&Service::LoadComponentConfig>(componentName);
}

void ProcessManagerServiceProxy::SetupComponentConfig(const Text& componentName)
{
    Invoke<&Service::SetupComponentConfig>(componentName);
}

void ProcessManagerServiceProxy::PublishComponentServices(const Text& componentName)
{
    Invoke<&Service::PublishComponentServices>(componentName);
}

void ProcessManagerServiceProxy::StartComponent(const Text& componentName)
{
    Invoke<&Service::StartComponent>(componentName);
}

void ProcessManagerServiceProxy::StopComponent(const Text& componentName)
{
    Invoke<&Service::StopComponent>(componentName);
}

void ProcessManagerServiceProxy::ResetComponentConfig(const Text& componentName)
{
    Invoke<&Service::ResetComponentConfig>(componentName);
}

void ProcessManagerServiceProxy::DisposeComponent(const Text& componentName)
{
    Invoke<&Service::DisposeComponent>(componentName);
}

void ProcessManagerServiceProxy::PowerDownComponent(const Text& componentName)
{
    Invoke<&Service::PowerDownComponent>(componentName);
}

bool ProcessManagerServiceProxy::SetEnvironmentVariable(const Rsc::RscString<128>& name, Rsc::RscVariant<512> value)
{
    return Invoke<&Service::SetEnvironmentVariable>(name, value);
}

ProcessManagerServiceProxyFactory& ProcessManagerServiceProxyFactory::GetInstance()
{
    static ProcessManagerServiceProxyFactory instance;
    return instance;
}

} // namespace Vela::System::Kiro::Services::Internal
