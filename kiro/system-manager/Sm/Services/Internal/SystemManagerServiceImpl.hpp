#pragma once

#include <Vela/System/Kiro/Services/Internal/ISystemManagerService.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

#include <vector>

namespace Vela::System::Kiro::Services::Internal
{

/// The system manager service for the platform's own tools: hands each call to the system manager.
class SystemManagerServiceImpl : public ISystemManagerService
{
public:
    void Shutdown() override;
    void PowerDown() override;
    void Restart() override;
    void SetEnvironmentVariable(const Name& name, Rsc::RscVariant<512> value) override;
    std::vector<Name> GetApplicationNames() override;
    bool ResolveDeprecatedVariableName(const Name& name, Name& currentName) override;
    std::vector<Text> GetComponentsOfType(const Text& componentType) override;
    Text GetProcessNameOfComponent(const Text& componentName) override;
};

using SystemManagerServiceFactory = Rsc::RscServiceFactory<ISystemManagerService, SystemManagerServiceImpl>;

} // namespace Vela::System::Kiro::Services::Internal
