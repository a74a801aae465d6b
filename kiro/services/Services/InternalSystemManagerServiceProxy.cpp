#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

ISystemManagerService::~ISystemManagerService() = default;
SystemManagerServiceProxy::~SystemManagerServiceProxy() = default;

void SystemManagerServiceProxy::Shutdown()
{
    Invoke<&ISystemManagerService::Shutdown>();
}

void SystemManagerServiceProxy::PowerDown()
{
    Invoke<&ISystemManagerService::PowerDown>();
}

void SystemManagerServiceProxy::Restart()
{
    Invoke<&ISystemManagerService::Restart>();
}

void SystemManagerServiceProxy::SetEnvironmentVariable(const Name& name, Rsc::RscVariant<512> value)
{
    Invoke<&ISystemManagerService::SetEnvironmentVariable>(name, value);
}

std::vector<ISystemManagerService::Name> SystemManagerServiceProxy::GetApplicationNames()
{
    return Invoke<&ISystemManagerService::GetApplicationNames>();
}

bool SystemManagerServiceProxy::ResolveDeprecatedVariableName(const Name& name, Name& currentName)
{
    return Invoke<&ISystemManagerService::ResolveDeprecatedVariableName>(name, currentName);
}

std::vector<ISystemManagerService::Text> SystemManagerServiceProxy::GetComponentsOfType(const Text& componentType)
{
    return Invoke<&ISystemManagerService::GetComponentsOfType>(componentType);
}

ISystemManagerService::Text SystemManagerServiceProxy::GetProcessNameOfComponent(const Text& componentName)
{
    return Invoke<&ISystemManagerService::GetProcessNameOfComponent>(componentName);
}

SystemManagerServiceProxyFactory::SystemManagerServiceProxyFactory()
    : RscServiceProxyFactory(Rsc::ServiceProvider::MainProcess())
{
}

SystemManagerServiceProxyFactory& SystemManagerServiceProxyFactory::GetInstance()
{
    static SystemManagerServiceProxyFactory instance;
    return instance;
}

} // namespace Vela::System::Kiro::Services::Internal
