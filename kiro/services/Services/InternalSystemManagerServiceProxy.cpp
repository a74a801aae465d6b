#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

using Service = ISystemManagerService;

ISystemManagerService::~ISystemManagerService() = default;
SystemManagerServiceProxy::~SystemManagerServiceProxy() = default;

void SystemManagerServiceProxy::Shutdown()
{
    Invoke<&Service::Shutdown>();
}

void SystemManagerServiceProxy::PowerDown()
{
    Invoke<&Service::PowerDown>();
}

void SystemManagerServiceProxy::Restart()
{
    Invoke<&Service::Restart>();
}

void SystemManagerServiceProxy::SetEnvironmentVariable(const Name& name, Rsc::RscVariant<512> value)
{
    Invoke<&Service::SetEnvironmentVariable>(name, value);
}

std::vector<ISystemManagerService::Name> SystemManagerServiceProxy::GetApplicationNames()
{
    return Invoke<&Service::GetApplicationNames>();
}

bool SystemManagerServiceProxy::ResolveDeprecatedVariableName(const Name& name, Name& currentName)
{
    return Invoke<&Service::ResolveDeprecatedVariableName>(name, currentName);
}

std::vector<ISystemManagerService::Text> SystemManagerServiceProxy::GetComponentsOfType(const Text& componentType)
{
    return Invoke<&Service::GetComponentsOfType>(componentType);
}

ISystemManagerService::Text SystemManagerServiceProxy::GetProcessNameOfComponent(const Text& componentName)
{
    return Invoke<&Service::GetProcessNameOfComponent>(componentName);
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
