#include "Security/Audit.hpp"

namespace Vela::System::Rsc
{

void Audit::LogRefusal(const RscCaller& caller, const String& service, const char* operation)
{
    log.Warning("Refused operation '{0}' of service '{1}' to {2}.", operation, service, caller.ToString());
}

} // namespace Vela::System::Rsc
