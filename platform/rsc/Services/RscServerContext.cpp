#include "Services/Failure.hpp"

#include <Vela/System/Rsc/RscServerContext.hpp>

namespace Vela::System::Rsc
{

RscServerContext::RscServerContext(RemotingReader& request, RemotingWriter& response)
    : reader(request)
    , writer(response)
    , start(response.GetData().size())
{
}

void RscServerContext::AbortRequest(RscErrorCode code, const char* message)
{
    writer.Truncate(start);
    WriteFailure(writer, code,
                 CaughtException(CaughtException::Tier::Platform, ExceptionKind::Rsc, "Vela::RscException",
                                 message == nullptr ? "" : message, {}, {}));
}

void RscServerContext::FailRequest(const CaughtException& failure)
{
    writer.Truncate(start);
    WriteFailure(writer, RscErrorCode::None, failure);
}

} // namespace Vela::System::Rsc
