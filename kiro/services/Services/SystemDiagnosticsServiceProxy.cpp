#include <Vela/System/Kiro/Services/Internal/SystemDiagnosticsServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

using Service = ISystemDiagnosticsService;

ISystemDiagnosticsService::~ISystemDiagnosticsService() = default;
SystemDiagnosticsServiceProxy::~SystemDiagnosticsServiceProxy() = default;

SystemStatus SystemDiagnosticsServiceProxy::GetStatus()
{
    return Invoke<&Service::GetStatus>();
}

std::vector<ProcessStatus> SystemDiagnosticsServiceProxy::GetProcesses()
{
    return Invoke<&Service::GetProcesses>();
}

std::vector<ComponentStatus> SystemDiagnosticsServiceProxy::GetComponents()
{
    return Invoke<&Service::GetComponents>();
}

Timeline SystemDiagnosticsServiceProxy::GetTimeline()
{
    return Invoke<&Service::GetTimeline>();
}

SystemDiagnosticsServiceProxyFactory::SystemDiagnosticsServiceProxyFactory()
    : RscServiceProxyFactory(Rsc::ServiceProvider::MainProcess())
{
}

SystemDiagnosticsServiceProxyFactory& SystemDiagnosticsServiceProxyFactory::GetInstance()
{
    static SystemDiagnosticsServiceProxyFactory instance;
    return instance;
}

} // namespace Vela::System::Kiro::Services::Internal
