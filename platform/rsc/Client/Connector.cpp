#include "Client/Connector.hpp"

#include "Security/Secret.hpp"
#include "Services/Failure.hpp"
#include "Transport/DirectoryWatch.hpp"
#include "Transport/Socket.hpp"
#include "Transport/TransportException.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

/// A queue that is full for a moment is no reason to give up.
constexpr std::chrono::milliseconds minConnectTime = 100ms;
/// A process that listens gets this time to answer even when the caller's own is over.
constexpr auto minAnswerTime = 500ms;

std::chrono::milliseconds GetRemaining(Connector::Clock::time_point deadline)
{
    return std::max<std::chrono::milliseconds>(
        0ms, std::chrono::ceil<std::chrono::milliseconds>(deadline - Connector::Clock::now()));
}

/// Waits for the first byte, which the caller's descriptors may interrupt; frames then come as a whole.
void WaitForAnswer(const FrameChannel& channel, Connector::Clock::time_point deadline,
                   std::span<const int> wakeDescriptors)
{
    const auto result = WaitForInput(channel.GetDescriptor(),
                                     std::max(deadline, Connector::Clock::now() + minAnswerTime), wakeDescriptors);
    if (result != WaitResult::Changed)
    {
        throw TransportException(TransportFailure::TimedOut,
                                 result == WaitResult::Woken ? "the wait was interrupted" : "timed out");
    }
}

} // namespace

Connector::Connector(std::shared_ptr<const RuntimeDirectory> runtimeDirectory, RscManagerOptions managerOptions,
                     String ownProcessName)
    : directory(std::move(runtimeDirectory))
    , options(std::move(managerOptions))
    , processName(std::move(ownProcessName))
{
}

std::optional<Connection> Connector::Connect(const EndpointAddress& address, Clock::time_point deadline,
                                             std::span<const int> wakeDescriptors) const
{
    Commons::UniqueFd socket =
        address.port != 0 ? ConnectToPort(address.port)
                          : directory->Connect(address.fileName, std::max(GetRemaining(deadline), minConnectTime));
    if (!socket.IsValid())
    {
        return std::nullopt;
    }
    if (address.port == 0)
    {
        if (const auto peer = GetPeerCredentials(socket.Get()); peer.userId != directory->GetOwner())
        {
            throw TransportException(TransportFailure::Refused,
                                     fmt::format("the endpoint belongs to user {}", peer.userId));
        }
    }
    Connection connection{std::make_unique<FrameChannel>(std::move(socket), options.callTimeout), {}, 0};
    FrameChannel& channel = *connection.channel;
    if (address.port != 0)
    {
        WaitForAnswer(channel, deadline, wakeDescriptors);
        Secret::Open(*directory).AuthenticateServer(channel, address.port, options.callTimeout);
    }
    WriteRemote(channel.BeginFrame(maxControlPayload), HelloMessage{processName});
    try
    {
        channel.Send(FrameKind::Hello, connection.lastRequest);
    }
    catch (const TransportException& exception)
    {
        // Who refuses us does so without listening: the reason is there to be read although nothing can be sent.
        if (exception.GetFailure() != TransportFailure::Closed)
        {
            throw;
        }
    }
    WaitForAnswer(channel, deadline, wakeDescriptors);
    const Frame frame =
        channel.ReceiveOwed(FrameKind::Welcome, connection.lastRequest, maxControlPayload, options.callTimeout);
    RemotingReader reader(frame.payload);
    ReadRemote(reader, connection.welcome);
    reader.ReadEnd();
    return connection;
}

std::optional<ServiceNumbers> Connector::Open(Connection& connection, const ServiceKey& key,
                                              const String& interfaceName, Clock::time_point deadline,
                                              std::span<const int> wakeDescriptors) const
{
    const auto wait = std::min<std::int64_t>(GetRemaining(deadline).count(), std::numeric_limits<std::int32_t>::max());
    FrameChannel& channel = *connection.channel;
    WriteRemote(channel.BeginFrame(maxControlPayload),
                OpenMessage{key.provider, key.serviceName, interfaceName, static_cast<std::uint32_t>(wait)});
    channel.Send(FrameKind::Open, ++connection.lastRequest);
    WaitForAnswer(channel, deadline + minAnswerTime, wakeDescriptors);
    const Frame frame =
        channel.ReceiveOwed(FrameKind::Response, connection.lastRequest, options.maxResponseSize, options.callTimeout);
    RemotingReader reader(frame.payload);
    if (reader.ReadConfirmation())
    {
        const Failure failure = ReadFailure(reader);
        if (failure.code == RscErrorCode::None)
        {
            failure.exception.Throw();
        }
        return std::nullopt;
    }
    OpenedMessage opened;
    ReadRemote(reader, opened);
    reader.ReadEnd();
    return ServiceNumbers{opened.serviceNumber, opened.serviceGeneration};
}

} // namespace Vela::System::Rsc
