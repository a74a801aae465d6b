#include <Vela/System/Kiro/Services/SystemManagerServiceProxy.hpp>

namespace Vela::System::Kiro::Services
{

ComponentInfo::~ComponentInfo() = default;
ISystemManagerService::~ISystemManagerService() = default;
SystemManagerServiceProxy::~SystemManagerServiceProxy() = default;

void SystemManagerServiceProxy::Shutdown()
{
    Invoke<&ISystemManagerService::Shutdown>();
}

std::vector<ComponentInfo> SystemManagerServiceProxy::GetComponentInfos()
{
    return Invoke<&ISystemManagerService::GetComponentInfos>();
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

} // namespace Vela::System::Kiro::Services
