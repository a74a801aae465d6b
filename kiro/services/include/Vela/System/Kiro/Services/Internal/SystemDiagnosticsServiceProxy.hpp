#pragma once

#include <Vela/System/Kiro/Services/Internal/ISystemDiagnosticsService.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Calls the diagnostics service of the system. Thread-safe.
class VELA_KIRO_API SystemDiagnosticsServiceProxy final : public Rsc::RscServiceProxyBase<ISystemDiagnosticsService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;
    ~SystemDiagnosticsServiceProxy() override;

    SystemStatus GetStatus() override;
    std::vector<ProcessStatus> GetProcesses() override;
    std::vector<ComponentStatus> GetComponents() override;
    Timeline GetTimeline() override;
};

/// Makes proxies of the system's diagnostics service; its default provider is the main process.
class VELA_KIRO_API SystemDiagnosticsServiceProxyFactory final
    : public Rsc::RscServiceProxyFactory<ISystemDiagnosticsService, SystemDiagnosticsServiceProxy>
{
public:
    static SystemDiagnosticsServiceProxyFactory& GetInstance();

private:
    SystemDiagnosticsServiceProxyFactory();
};

} // namespace Vela::System::Kiro::Services::Internal
