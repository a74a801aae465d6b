#pragma once

#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Calls the process manager service of a process. Thread-safe.
class VELA_KIRO_API ProcessManagerServiceProxy final : public Rsc::RscServiceProxyBase<IProcessManagerService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;
    ~ProcessManagerServiceProxy() override;

    void ShutdownProcess() override;
    bool LoadLibrary(const Text& libraryName, const Text& libraryPath) override;
    void UnloadLibrary(const Text& libraryName) override;
    ComponentProperties CreateComponent(const Text& componentType, const Text& componentName,
                                        const Text& libraryName) override;
    void DestroyComponent(const Text& componentName) override;
    void InitializeComponent(const Text& componentName) override;
    void LoadComponentSettings(const Text& componentName, const Text& settingsPath) override;
    void SetupComponentSettings(const Text& componentName) override;
    void SubscribeComponentServices(const Text& componentName) override;
    void LoadComponentConfig(const Text& componentName) override;
    void SetupComponentConfig(const Text& componentName) override;
    void PublishComponentServices(const Text& componentName) override;
    void StartComponent(const Text& componentName) override;
    void StopComponent(const Text& componentName) override;
    void ResetComponentConfig(const Text& componentName) override;
    void DisposeComponent(const Text& componentName) override;
    void PowerDownComponent(const Text& componentName) override;
    bool SetEnvironmentVariable(const Rsc::RscString<128>& name, Rsc::RscVariant<512> value) override;
};

/// Makes proxies of the process manager service. There is one in every process, so the caller names the provider.
class VELA_KIRO_API ProcessManagerServiceProxyFactory final
    : public Rsc::RscServiceProxyFactory<IProcessManagerService, ProcessManagerServiceProxy>
{
public:
    static ProcessManagerServiceProxyFactory& GetInstance();

private:
    ProcessManagerServiceProxyFactory() = default;
};

} // namespace Vela::System::Kiro::Services::Internal
