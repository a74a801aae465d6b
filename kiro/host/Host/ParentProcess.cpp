#include <Host/ParentProcess.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>

#include <unistd.h>

namespace Vela::System::Kiro::Internal
{

std::optional<String> FindEndedParent()
{
    String id;
    const bool isTold = Commons::Environment::GetVariableValue(MainApplicationBase::parentProcessIdName, id);
    return isTold && id != std::to_string(getppid()) ? std::optional(id) : std::nullopt;
}

} // namespace Vela::System::Kiro::Internal
