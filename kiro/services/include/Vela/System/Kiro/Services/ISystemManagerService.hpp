#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>

#include <vector>

namespace Vela::System::Kiro::Services
{

/// What any program may ask of the system; published by the main process. The order of the operations is fixed.
class VELA_KIRO_API ISystemManagerService : public Rsc::IRscService
{
public:
    ~ISystemManagerService() override;

    /// Ends the system in order. Returns at once.
    virtual void Shutdown() = 0;
    /// All components: those that every system has first, then the configured ones in start order.
    virtual std::vector<ComponentInfo> GetComponentInfos() = 0;
};

} // namespace Vela::System::Kiro::Services

template <>
struct Vela::System::Rsc::OperationTable<Vela::System::Kiro::Services::ISystemManagerService>
{
    using Service = Kiro::Services::ISystemManagerService;
    static constexpr const char* interfaceName = "Vela.System.Kiro.Services.ISystemManagerService";
    static constexpr auto operations = Operations(Operation<1, &Service::Shutdown>("Shutdown"),
                                                  Operation<2, &Service::GetComponentInfos>("GetComponentInfos"));
};
