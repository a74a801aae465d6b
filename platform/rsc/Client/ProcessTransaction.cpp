#include "Client/ProcessTransaction.hpp"

#include "Services/Failure.hpp"
#include "Transport/TransportException.hpp"

#include <fmt/format.h>

#include <utility>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

ProcessTransaction::ProcessTransaction(std::shared_ptr<ProcessClient> processClient, const RscCall& callToMake)
    : client(std::move(processClient))
    , call(callToMake)
{
    try
    {
        taken = client->Take(call.operation.deadline == CallDeadline::NoneOnOneThread);
    }
    catch (const RscException& exception)
    {
        throw MakeFailure(exception.GetMessage());
    }
}

ProcessTransaction::~ProcessTransaction()
{
    client->Return(std::move(taken), isInSync);
}

RemotingWriter& ProcessTransaction::BeginServiceInvocationRequest()
{
    RemotingWriter& writer = taken.connection->channel->BeginFrame(client->GetOptions().maxRequestSize);
    writer.WriteRaw(call.serviceNumber);
    writer.WriteRaw(call.serviceGeneration);
    writer.WriteRaw(call.operation.number);
    return writer;
}

void ProcessTransaction::EndServiceInvocationRequest()
{
    isInSync = false;
    try
    {
        taken.connection->channel->Send(FrameKind::Call, ++taken.connection->lastRequest);
    }
    catch (const TransportException& exception)
    {
        throw MakeFailure(exception.GetMessage());
    }
}

RemotingReader& ProcessTransaction::BeginServiceInvocationResponse()
{
    std::optional<Failure> failure;
    try
    {
        const auto timeout = call.operation.deadline == CallDeadline::Default ? client->GetOptions().callTimeout : 0ms;
        const Frame frame = taken.connection->channel->ReceiveOwed(FrameKind::Response, taken.connection->lastRequest,
                                                                   client->GetOptions().maxResponseSize, timeout);
        reader.emplace(frame.payload);
        isInSync = true;
        if (reader->ReadConfirmation())
        {
            failure = ReadFailure(*reader);
        }
    }
    catch (const TransportException& exception)
    {
        const bool isTimeout = exception.GetFailure() == TransportFailure::TimedOut;
        throw MakeFailure(isTimeout ? fmt::format("no answer within {} ms", client->GetOptions().callTimeout.count())
                                    : exception.GetMessage());
    }
    catch (const RscException& exception)
    {
        throw MakeMalformedResponse(exception.GetMessage());
    }
    if (failure)
    {
        if (failure->code == RscErrorCode::None)
        {
            failure->exception.Throw();
        }
        throw MakeFailure(Describe(*failure));
    }
    return *reader;
}

void ProcessTransaction::EndServiceInvocationResponse()
{
    reader->ReadEnd();
}

RscException ProcessTransaction::MakeMalformedResponse(const String& why) const
{
    return MakeFailure(fmt::format("the response could not be read: {}", why));
}

RscException ProcessTransaction::MakeFailure(const String& why) const
{
    return MakeCallFailure(call, client->GetProcessName(), why);
}

String ProcessTransaction::Describe(const Failure& failure) const
{
    const String& message = failure.exception.GetMessage();
    switch (failure.code)
    {
    case RscErrorCode::UnknownService:
        return "the service is not published any more";
    case RscErrorCode::UnknownOperation:
        return fmt::format("the service has no operation number {}", call.operation.number);
    case RscErrorCode::MalformedRequest:
        return fmt::format("the arguments were not understood: {}", message);
    case RscErrorCode::ResponseTooLarge:
        return fmt::format("the answer is too large: {}", message);
    case RscErrorCode::AccessDenied:
        return "not allowed to this user";
    case RscErrorCode::None:
        break;
    }
    return fmt::format("error {}: {}", static_cast<std::uint32_t>(failure.code), message);
}

} // namespace Vela::System::Rsc
