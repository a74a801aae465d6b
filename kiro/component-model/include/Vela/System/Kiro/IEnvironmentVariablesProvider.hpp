#pragma once

#include <Vela/System/Kiro/Api.hpp>

#include <map>

namespace Vela::System::Kiro
{

/// Implemented by the component that contributes environment variables to its process. The framework finds the
/// interface by a cast from IComponent, before the settings' variables are resolved and published. Both operations are
/// called once, in this order, on the main thread.
class VELA_KIRO_API IEnvironmentVariablesProvider
{
public:
    virtual ~IEnvironmentVariablesProvider();

    /// Values by name. A variable that the settings define themselves keeps the settings' value.
    [[nodiscard]] virtual std::map<String, String> GetEnvironmentVariables() const = 0;

    /// Tells that the variables are in effect now.
    virtual void OnEnvironmentVariablesTakenOver() = 0;
};

} // namespace Vela::System::Kiro
