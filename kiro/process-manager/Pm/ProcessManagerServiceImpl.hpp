#pragma once

#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Hands each call to the process's manager. Exceptions leave as copies: the library that threw one may be unloaded
/// before the caller has dealt with it.
class ProcessManagerServiceImpl : public IProcessManagerService
{
public:
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

using ProcessManagerServiceFactory = Rsc::RscServiceFactory<IProcessManagerService, ProcessManagerServiceImpl>;

} // namespace Vela::System::Kiro::Services::Internal
