#include <Host/ParentProcess.hpp>
#include <Sm/ChildCommandLine.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <unistd.h>

namespace Vela::System::Kiro::Internal
{

bool HasParentProcess()
{
    String id;
    return Commons::Environment::GetVariableValue(Sm::parentProcessIdVariable, id);
}

std::optional<String> FindEndedParent()
{
    String id;
    const bool isTold = Commons::Environment::GetVariableValue(Sm::parentProcessIdVariable, id);
    return isTold && id != std::to_string(getppid()) ? std::optional(id) : std::nullopt;
}

} // namespace Vela::System::Kiro::Internal
