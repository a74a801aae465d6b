#pragma once

#include <Vela/System/Kiro/Services/ISystemManagerService.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

#include <vector>

namespace Vela::System::Kiro::Services
{

/// The public system manager service of the main process: hands each call to the system manager.
class SystemManagerServiceImpl : public ISystemManagerService
{
public:
    void Shutdown() override;
    std::vector<ComponentInfo> GetComponentInfos() override;
};

using SystemManagerServiceFactory = Rsc::RscServiceFactory<ISystemManagerService, SystemManagerServiceImpl>;

} // namespace Vela::System::Kiro::Services
