#pragma once

#include <Vela/System/Kiro/Services/ISystemManagerService.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

namespace Vela::System::Kiro::Services
{

/// Calls the public system manager service. Thread-safe.
class VELA_KIRO_API SystemManagerServiceProxy final : public Rsc::RscServiceProxyBase<ISystemManagerService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;
    ~SystemManagerServiceProxy() override;

    void Shutdown() override;
    std::vector<ComponentInfo> GetComponentInfos() override;
};

/// Makes proxies of the public system manager service; its default provider is the main process.
class VELA_KIRO_API SystemManagerServiceProxyFactory final
    : public Rsc::RscServiceProxyFactory<ISystemManagerService, SystemManagerServiceProxy>
{
public:
    static SystemManagerServiceProxyFactory& GetInstance();

private:
    SystemManagerServiceProxyFactory();
};

} // namespace Vela::System::Kiro::Services
