#include "Security/Audit.hpp"

#include <Vela/Exceptions.hpp>

#include <utility>

namespace Vela::System::Rsc
{

RscServiceAuthorizator::RscServiceAuthorizator(String service, String interfaceId, const IRscAuthorizator* decider)
    : serviceName(service.empty() ? interfaceId : std::move(service))
    , interfaceName(std::move(interfaceId))
    , authorizator(decider)
{
}

void RscServiceAuthorizator::AuthorizeServiceInvocation(const char* operationName) const
{
    const RscCaller caller = RscCaller::GetCurrent();
    if (authorizator == nullptr || !authorizator->IsAllowed(caller, interfaceName, operationName))
    {
        Audit::LogRefusal(caller, serviceName, operationName);
        throw RscException("Operation '{0}' of service '{1}' is not allowed to {2}.", operationName, serviceName,
                           caller.ToString());
    }
}

} // namespace Vela::System::Rsc
