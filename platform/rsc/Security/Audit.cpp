#include "Security/Audit.hpp"

#include "Server/PeerLog.hpp"

#include <fmt/format.h>

namespace Vela::System::Rsc
{

namespace
{

ConnectionPeer FindPeer(const RscCaller& caller)
{
    return caller.processId == 0 ? ConnectionPeer::MakeTcp()
                                 : ConnectionPeer::MakeUnix({caller.userId, caller.processId});
}

} // namespace

void Audit::LogRefusal(const RscCaller& caller, const String& service, const char* operation)
{
    const String subject = fmt::format("operation '{0}' of service '{1}'", operation, service);
    GetRefusals().Warn(FindPeer(caller), subject, fmt::format("Refused {0} to {1}.", subject, caller.ToString()));
}

void Audit::Finish()
{
    GetRefusals().EndPeriods();
}

PeerLog& Audit::GetRefusals()
{
    // Never destroyed: a call may outlast all that is taken down.
    static auto& refusals = *new PeerLog([](const String& text) { log.Warning("{0}", text); });
    return refusals;
}

} // namespace Vela::System::Rsc
