#include <Vela/System/Kiro/Services/Internal/SystemDiagnosticsServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

ISystemDiagnosticsService::~ISystemDiagnosticsService() = default;
SystemDiagnosticsServiceProxy::~SystemDiagnosticsServiceProxy() = default;

SystemStatus SystemDiagnosticsServiceProxy::GetStatus()
{
    return Invoke<&ISystemDiagnosticsService::GetStatus>();
}

std::vector<ProcessStatus> SystemDiagnosticsServiceProxy::GetProcesses()
{
    return Invoke<&ISystemDiagnosticsService::GetProcesses>();
}

std::vector<ComponentStatus> SystemDiagnosticsServiceProxy::GetComponents()
{
    return Invoke<&ISystemDiagnosticsService::GetComponents>();
}

Timeline SystemDiagnosticsServiceProxy::GetTimeline()
{
    return Invoke<&ISystemDiagnosticsService::GetTimeline>();
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
