#include <Host/ParentProcess.hpp>
#include <Sm/ChildCommandLine.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <unistd.h>

namespace Vela::System::Kiro::Internal
{

void ParentProcess::TakeOver(bool isChild)
{
    const String told = Commons::Environment::TakeInheritedVariable(Sm::parentProcessIdVariable);
    id = isChild ? told : String();
}

std::optional<String> ParentProcess::FindEnded() const
{
    return IsKnown() && id != std::to_string(getppid()) ? std::optional(id) : std::nullopt;
}

} // namespace Vela::System::Kiro::Internal
