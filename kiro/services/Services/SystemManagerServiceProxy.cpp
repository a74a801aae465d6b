#include <Vela/System/Kiro/Services/SystemManagerServiceProxy.hpp>

namespace Vela::System::Kiro::Services
{

using Service = ISystemManagerService;

ComponentInfo::~ComponentInfo() = default;
ISystemManagerService::~ISystemManagerService() = default;
SystemManagerServiceProxy::~SystemManagerServiceProxy() = default;

void SystemManagerServiceProxy::Shutdown()
{
    Invoke<&Service::Shutdown>();
}

std::vector<ComponentInfo> SystemManagerServiceProxy::GetComponentInfos()
{
    return Invoke<&Service::GetComponentInfos>();
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
