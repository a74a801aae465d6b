#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemDiagnostics.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// What an operator asks about the whole system; the main process publishes it. All operations return at once and may
/// be called at any time, also while the system comes up or goes down. The order of the operations is fixed.
class VELA_KIRO_API ISystemDiagnosticsService : public Rsc::IRscService
{
public:
    ~ISystemDiagnosticsService() override;

    virtual SystemStatus GetStatus() = 0;
    /// All configured processes by name, with what they take of the machine.
    virtual std::vector<ProcessStatus> GetProcesses() = 0;
    /// All configured components: those that take part in the lifecycle in start order, then the others.
    virtual std::vector<ComponentStatus> GetComponents() = 0;
    virtual Timeline GetTimeline() = 0;
};

} // namespace Vela::System::Kiro::Services::Internal

template <>
struct Vela::System::Rsc::OperationTable<Vela::System::Kiro::Services::Internal::ISystemDiagnosticsService>
{
    using Service = Kiro::Services::Internal::ISystemDiagnosticsService;
    static constexpr const char* interfaceName = "Vela.System.Kiro.Services.Internal.ISystemDiagnosticsService";
    static constexpr auto operations = Operations(
        Operation<1, &Service::GetStatus>("GetStatus"), Operation<2, &Service::GetProcesses>("GetProcesses"),
        Operation<3, &Service::GetComponents>("GetComponents"), Operation<4, &Service::GetTimeline>("GetTimeline"));
};
