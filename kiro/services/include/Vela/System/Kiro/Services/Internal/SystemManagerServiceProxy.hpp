#pragma once

#include <Vela/System/Kiro/Services/Internal/ISystemManagerService.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Calls the internal system manager service. Thread-safe.
class VELA_KIRO_API SystemManagerServiceProxy final : public Rsc::RscServiceProxyBase<ISystemManagerService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;
    ~SystemManagerServiceProxy() override;

    void Shutdown() override;
    void PowerDown() override;
    void Restart() override;
    void SetEnvironmentVariable(const Name& name, Rsc::RscVariant<512> value) override;
    std::vector<Name> GetApplicationNames() override;
    bool ResolveDeprecatedVariableName(const Name& name, Name& currentName) override;
    std::vector<Text> GetComponentsOfType(const Text& componentType) override;
    Text GetProcessNameOfComponent(const Text& componentName) override;
};

/// Makes proxies of the internal system manager service; its default provider is the main process.
class VELA_KIRO_API SystemManagerServiceProxyFactory final
    : public Rsc::RscServiceProxyFactory<ISystemManagerService, SystemManagerServiceProxy>
{
public:
    static SystemManagerServiceProxyFactory& GetInstance();

private:
    SystemManagerServiceProxyFactory();
};

} // namespace Vela::System::Kiro::Services::Internal
