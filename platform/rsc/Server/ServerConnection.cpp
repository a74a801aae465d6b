#include "Server/ServerConnection.hpp"

#include "Security/AccessControl.hpp"
#include "Security/Audit.hpp"
#include "Security/CallerScope.hpp"
#include "Security/Secret.hpp"
#include "Services/Failure.hpp"
#include "Transport/Messages.hpp"
#include "Transport/Socket.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/System/Rsc/RscServerContext.hpp>

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

constexpr auto maxOpenWait = 60s;

} // namespace

ServerConnection::ServerConnection(std::shared_ptr<const ServerData> serverData, Commons::UniqueFd socket,
                                   const ConnectionPeer& connectionPeer, RscCaller knownCaller)
    : server(std::move(serverData))
    , peer(connectionPeer)
    , channel(std::move(socket), server->options.frameTimeout)
    , caller(std::move(knownCaller))
    , isForeign(connectionPeer.GetKind() == ConnectionPeer::Kind::OtherUser)
{
}

void ServerConnection::Serve() noexcept
{
    try
    {
        Authenticate();
        Introduce();
        ServeCalls();
    }
    catch (const TransportException& exception)
    {
        if (exception.GetFailure() == TransportFailure::TimedOut)
        {
            LogEnd(fmt::format("timed out: {} took longer than {} ms", awaited, server->options.frameTimeout.count()));
        }
        else if (exception.GetFailure() != TransportFailure::Closed)
        {
            LogEnd(exception.GetMessage());
        }
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        LogEnd(fmt::format("malformed frame: {}", failure.GetText()));
    }
    channel.Abort();
}

void ServerConnection::LogEnd(const String& reason) const
{
    server->peerLog->Warn(peer, connectionsSubject,
                          fmt::format("Closed the connection of {}: {}", caller.ToString(), reason));
}

void ServerConnection::Authenticate()
{
    if (peer.GetKind() == ConnectionPeer::Kind::Tcp)
    {
        server->secret->AuthenticateClient(channel, server->options.frameTimeout);
        // Whoever knows the secret can read the system user's files.
        caller.userId = ::geteuid();
    }
    if (isForeign && !server->accessControl->MayConnect(caller))
    {
        Refuse("the system belongs to another user");
    }
}

void ServerConnection::Introduce()
{
    const Frame frame = channel.Receive(maxControlPayload, server->options.frameTimeout);
    if (frame.kind != FrameKind::Hello)
    {
        throw TransportException(TransportFailure::Malformed, "malformed frame: no introduction");
    }
    RemotingReader reader(frame.payload);
    HelloMessage hello;
    ReadRemote(reader, hello);
    reader.ReadEnd();
    caller.processName = std::move(hello.processName);

    WriteRemote(channel.BeginFrame(maxControlPayload), WelcomeMessage{server->processName, server->instanceId});
    channel.Send(FrameKind::Welcome, frame.requestNumber);
    isIntroduced = true;
}

void ServerConnection::ServeCalls()
{
    for (;;)
    {
        awaited = "a request that it had begun";
        const Frame request = channel.ReceiveWhenever(server->options.maxRequestSize, server->options.frameTimeout);
        {
            const std::lock_guard lock(mutex);
            if (isClosing)
            {
                return;
            }
            isBusy = true;
        }
        Answer(request);
        {
            const std::lock_guard lock(mutex);
            isBusy = false;
            if (isClosing)
            {
                return;
            }
        }
    }
}

void ServerConnection::Answer(const Frame& request)
{
    switch (request.kind)
    {
    case FrameKind::Open:
        AnswerOpen(request);
        break;
    case FrameKind::Call:
        AnswerCall(request);
        break;
    default:
        throw TransportException(TransportFailure::Malformed,
                                 fmt::format("malformed frame: kind {} is no request", static_cast<int>(request.kind)));
    }
    awaited = "an answer that it did not take";
    channel.Send(FrameKind::Response, request.requestNumber);
}

void ServerConnection::AnswerOpen(const Frame& request)
{
    RemotingReader reader(request.payload);
    OpenMessage message;
    ReadRemote(reader, message);
    reader.ReadEnd();

    RemotingWriter& writer = channel.BeginFrame(server->options.maxResponseSize);
    RscServerContext context(reader, writer);
    const auto wait =
        std::min<std::chrono::milliseconds>(std::chrono::milliseconds(message.waitMilliseconds), maxOpenWait);
    try
    {
        const auto numbers = server->registry->Find({message.provider, message.serviceName}, message.interfaceName,
                                                    ServiceRegistry::Clock::now() + wait);
        if (!numbers)
        {
            context.AbortRequest(RscErrorCode::UnknownService, nullptr);
            return;
        }
        writer.WriteConfirmation(false);
        WriteRemote(writer, OpenedMessage{numbers->number, numbers->generation});
    }
    catch (const InvalidOperationException&)
    {
        const auto failure = CaughtException::Current();
        if (isForeign)
        {
            // Which interface the service has is no concern of another user.
            context.AbortRequest(RscErrorCode::UnknownService, nullptr);
            return;
        }
        context.FailRequest(failure);
    }
}

void ServerConnection::AnswerCall(const Frame& request)
{
    RemotingReader reader(request.payload);
    const auto number = reader.ReadRaw<std::uint16_t>();
    const auto generation = reader.ReadRaw<std::uint16_t>();
    const auto operation = reader.ReadRaw<std::uint16_t>();

    RemotingWriter& writer = channel.BeginFrame(server->options.maxResponseSize);
    RscServerContext context(reader, writer);
    const auto lease = server->registry->Acquire({number, generation});
    if (!lease)
    {
        context.AbortRequest(RscErrorCode::UnknownService, nullptr);
        return;
    }
    if (isForeign && !lease->GetStub().IsSecure())
    {
        const char* name = lease->GetStub().GetOperationName(operation);
        Audit::LogRefusal(caller, lease->GetInterfaceName(), name == nullptr ? "unknown" : name);
        context.AbortRequest(RscErrorCode::AccessDenied, nullptr);
        return;
    }
    const CallerScope scope(caller);
    try
    {
        lease->GetStub().Invoke(operation, context);
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        if (writer.HasOverflowed())
        {
            context.AbortRequest(RscErrorCode::ResponseTooLarge, failure.GetMessage().c_str());
        }
        else
        {
            context.FailRequest(failure);
        }
    }
}

void ServerConnection::Refuse(const String& reason)
{
    channel.SendText(FrameKind::Refusal, 0, reason);
    throw TransportException(TransportFailure::Refused, reason);
}

void ServerConnection::Close() noexcept
{
    const std::lock_guard lock(mutex);
    isClosing = true;
    if (!isBusy)
    {
        channel.Abort();
    }
}

void ServerConnection::Abort() noexcept
{
    channel.Abort();
}

} // namespace Vela::System::Rsc
