#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/IRscAuthorizator.hpp>

namespace Vela::System::Rsc
{

/// Asks an authorizator on behalf of one service.
class VELA_RSC_API RscServiceAuthorizator
{
public:
    /// @param service  the service's name, for messages; empty: the interface's name
    /// @param interfaceId  the name under which operations are granted
    /// @param decider  must outlive this object; null refuses every call
    RscServiceAuthorizator(String service, String interfaceId, const IRscAuthorizator* decider);

    /// Checks the present caller (RscCaller::GetCurrent). A refusal is logged.
    /// @throws RscException when the call is refused
    void AuthorizeServiceInvocation(const char* operationName) const;

private:
    String serviceName;
    String interfaceName;
    const IRscAuthorizator* authorizator;
};

} // namespace Vela::System::Rsc
