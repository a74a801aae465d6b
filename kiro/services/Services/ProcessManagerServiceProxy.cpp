#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

IProcessManagerService::~IProcessManagerService() = default;
ProcessManagerServiceProxy::~ProcessManagerServiceProxy() = default;

void ProcessManagerServiceProxy::ShutdownProcess()
{
    Invoke<&IProcessManagerService::ShutdownProcess>();
}

bool ProcessManagerServiceProxy::LoadLibrary(const Text& libraryName, const Text& libraryPath)
{
    return Invoke<&IProcessManagerService::LoadLibrary>(libraryName, libraryPath);
}

void ProcessManagerServiceProxy::UnloadLibrary(const Text& libraryName)
{
    Invoke<&IProcessManagerService::UnloadLibrary>(libraryName);
}

ComponentProperties ProcessManagerServiceProxy::CreateComponent(const Text& componentType, const Text& componentName,
                                                                const Text& libraryName)
{
    return Invoke<&IProcessManagerService::CreateComponent>(componentType, componentName, libraryName);
}

void ProcessManagerServiceProxy::DestroyComponent(const Text& componentName)
{
    Invoke<&IProcessManagerService::DestroyComponent>(componentName);
}

void ProcessManagerServiceProxy::InitializeComponent(const Text& componentName)
{
    Invoke<&IProcessManagerService::InitializeComponent>(componentName);
}

void ProcessManagerServiceProxy::LoadComponentSettings(const Text& componentName, const Text& settingsPath)
{
    Invoke<&IProcessManagerService::LoadComponentSettings>(componentName, settingsPath);
}

void ProcessManagerServiceProxy::SetupComponentSettings(const Text& componentName)
{
    Invoke<&IProcessManagerService::SetupComponentSettings>(componentName);
}

void ProcessManagerServiceProxy::SubscribeComponentServices(const Text& componentName)
{
    Invoke<&IProcessManagerService::SubscribeComponentServices>(componentName);
}

void ProcessManagerServiceProxy::LoadComponentConfig(const Text& componentName)
{
    Invoke<&IProcessManagerService::LoadComponentConfig>(componentName);
}

void ProcessManagerServiceProxy::SetupComponentConfig(const Text& componentName)
{
    Invoke<&IProcessManagerService::SetupComponentConfig>(componentName);
}

void ProcessManagerServiceProxy::PublishComponentServices(const Text& componentName)
{
    Invoke<&IProcessManagerService::PublishComponentServices>(componentName);
}

void ProcessManagerServiceProxy::StartComponent(const Text& componentName)
{
    Invoke<&IProcessManagerService::StartComponent>(componentName);
}

void ProcessManagerServiceProxy::StopComponent(const Text& componentName)
{
    Invoke<&IProcessManagerService::StopComponent>(componentName);
}

void ProcessManagerServiceProxy::ResetComponentConfig(const Text& componentName)
{
    Invoke<&IProcessManagerService::ResetComponentConfig>(componentName);
}

void ProcessManagerServiceProxy::DisposeComponent(const Text& componentName)
{
    Invoke<&IProcessManagerService::DisposeComponent>(componentName);
}

void ProcessManagerServiceProxy::PowerDownComponent(const Text& componentName)
{
    Invoke<&IProcessManagerService::PowerDownComponent>(componentName);
}

bool ProcessManagerServiceProxy::SetEnvironmentVariable(const Rsc::RscString<128>& name, Rsc::RscVariant<512> value)
{
    return Invoke<&IProcessManagerService::SetEnvironmentVariable>(name, value);
}

ProcessManagerServiceProxyFactory& ProcessManagerServiceProxyFactory::GetInstance()
{
    static ProcessManagerServiceProxyFactory instance;
    return instance;
}

} // namespace Vela::System::Kiro::Services::Internal
