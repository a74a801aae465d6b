#include <Sm/Services/Internal/SystemDiagnosticsServiceImpl.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/Singleton.hpp>

namespace Vela::System::Kiro::Services::Internal
{

namespace
{

const Kiro::Internal::Sm::SystemDiagnostics& GetDiagnostics()
{
    return Singleton<Kiro::Internal::Sm::SystemManager>::GetInstance().GetDiagnostics();
}

} // namespace

SystemStatus SystemDiagnosticsServiceImpl::GetStatus()
{
    return GetDiagnostics().GetStatus();
}

std::vector<ProcessStatus> SystemDiagnosticsServiceImpl::GetProcesses()
{
    return GetDiagnostics().GetProcesses();
}

std::vector<ComponentStatus> SystemDiagnosticsServiceImpl::GetComponents()
{
    return GetDiagnostics().GetComponents();
}

Timeline SystemDiagnosticsServiceImpl::GetTimeline()
{
    return GetDiagnostics().GetTimeline();
}

} // namespace Vela::System::Kiro::Services::Internal
