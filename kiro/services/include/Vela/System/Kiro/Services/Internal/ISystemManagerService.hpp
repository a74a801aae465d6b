#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscString.hpp>
#include <Vela/System/Rsc/RscVariant.hpp>

#include <vector>

namespace Vela::System::Kiro::Services::Internal
{

/// Commands and queries of the whole system, for the platform's own programs; published by the main process. Queries
/// answer at any time, also while the system comes up or goes down. The order of the operations is fixed.
class VELA_KIRO_API ISystemManagerService : public Rsc::IRscService
{
public:
    using Name = Rsc::RscString<128>;
    using Text = Rsc::RscString<512>;

    ~ISystemManagerService() override;

    /// Ends the system in order. Returns at once.
    virtual void Shutdown() = 0;
    /// Tells every component that power is about to fail; returns when all have been told.
    virtual void PowerDown() = 0;
    /// Ends the system in order and starts it again. Returns at once.
    virtual void Restart() = 0;
    /// Sets an environment variable in every process.
    virtual void SetEnvironmentVariable(const Name& name, Rsc::RscVariant<512> value) = 0;
    /// The names of all processes that are connected, ascending.
    virtual std::vector<Name> GetApplicationNames() = 0;
    /// Writes the current name of an environment variable and answers true when `name` is an old one.
    virtual bool ResolveDeprecatedVariableName(const Name& name, Name& currentName) = 0;
    /// The names of all components of a type.
    virtual std::vector<Text> GetComponentsOfType(const Text& componentType) = 0;
    /// The name of the process in which a component lives; empty for an unknown component.
    virtual Text GetProcessNameOfComponent(const Text& componentName) = 0;
};

} // namespace Vela::System::Kiro::Services::Internal

template <>
struct Vela::System::Rsc::OperationTable<Vela::System::Kiro::Services::Internal::ISystemManagerService>
{
    using Service = Kiro::Services::Internal::ISystemManagerService;
    static constexpr const char* interfaceName = "Vela.System.Kiro.Services.Internal.ISystemManagerService";
    static constexpr auto operations = Operations(
        Operation<1, &Service::Shutdown>("Shutdown"), Operation<2, &Service::PowerDown>("PowerDown", noDeadline),
        Operation<3, &Service::Restart>("Restart"),
        Operation<4, &Service::SetEnvironmentVariable>("SetEnvironmentVariable"),
        Operation<5, &Service::GetApplicationNames>("GetApplicationNames"),
        Operation<6, &Service::ResolveDeprecatedVariableName>("ResolveDeprecatedVariableName"),
        Operation<7, &Service::GetComponentsOfType>("GetComponentsOfType"),
        Operation<8, &Service::GetProcessNameOfComponent>("GetProcessNameOfComponent"));
};
