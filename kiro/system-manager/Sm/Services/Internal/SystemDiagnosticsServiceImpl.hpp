#pragma once

#include <Vela/System/Kiro/Services/Internal/ISystemDiagnosticsService.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// The diagnostics service of the system: hands each call to the system manager's diagnostics.
class SystemDiagnosticsServiceImpl : public ISystemDiagnosticsService
{
public:
    SystemStatus GetStatus() override;
    std::vector<ProcessStatus> GetProcesses() override;
    std::vector<ComponentStatus> GetComponents() override;
    Timeline GetTimeline() override;
};

using SystemDiagnosticsServiceFactory = Rsc::RscServiceFactory<ISystemDiagnosticsService, SystemDiagnosticsServiceImpl>;

} // namespace Vela::System::Kiro::Services::Internal
