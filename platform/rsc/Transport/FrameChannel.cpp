#include "Transport/FrameChannel.hpp"

#include "Transport/Socket.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>
#include <Vela/System/Rsc/RscTypeCode.hpp>

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

constexpr std::size_t initialBufferSize = 4096;
/// A buffer that a large frame made larger than this is given back afterwards.
constexpr std::size_t keptBufferSize = 65536;

[[noreturn]] void ThrowSocketError(const char* what)
{
    const int error = errno;
    if (error == EAGAIN || error == EWOULDBLOCK)
    {
        throw TransportException(TransportFailure::TimedOut, "timed out");
    }
    if (error == EPIPE || error == ECONNRESET)
    {
        throw TransportException(TransportFailure::Closed, "the connection was closed");
    }
    throw TransportException(TransportFailure::System, fmt::format("{}: {}", what, Commons::GetErrorText(error)));
}

} // namespace

FrameChannel::FrameChannel(Commons::UniqueFd connectedSocket, std::chrono::milliseconds maxSendTime)
    : socket(std::move(connectedSocket))
    , sendTimeout(maxSendTime)
    , writer(0)
    , buffer(initialBufferSize)
{
}

RemotingWriter& FrameChannel::BeginFrame(std::size_t maxPayload)
{
    static constexpr std::array<std::byte, FrameHeader::size> space{};
    writer.Reset(FrameHeader::size + maxPayload);
    writer.WriteBytes(space);
    return writer;
}

void FrameChannel::Send(FrameKind kind, std::uint32_t requestNumber)
{
    const auto payloadLength = static_cast<std::uint32_t>(writer.GetData().size() - FrameHeader::size);
    writer.Patch(0, FrameHeader{kind, requestNumber, payloadLength}.Encode());
    auto rest = writer.GetData();
    std::optional<Clock::time_point> sendDeadline;
    while (!rest.empty())
    {
        // A blocking send would wait anew for each part that the other side takes, however small.
        const auto sent = Commons::RetryInterrupted(
            [&] { return ::send(socket.Get(), rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT); });
        if (sent >= 0)
        {
            rest = rest.subspan(static_cast<std::size_t>(sent));
            continue;
        }
        if (errno != EAGAIN && errno != EWOULDBLOCK)
        {
            ThrowSocketError("send");
        }
        if (!sendDeadline)
        {
            sendDeadline = sendTimeout > 0ms ? Clock::now() + sendTimeout : Clock::time_point::max();
        }
        AwaitRoom(*sendDeadline);
    }
}

void FrameChannel::AwaitRoom(Clock::time_point sendDeadline) const
{
    int wait = -1;
    if (sendDeadline != Clock::time_point::max())
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(sendDeadline - Clock::now());
        wait = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, std::numeric_limits<int>::max()));
    }
    pollfd room{socket.Get(), POLLOUT, 0};
    if (Commons::RetryInterrupted([&] { return ::poll(&room, 1, wait); }) == 0)
    {
        throw TransportException(TransportFailure::TimedOut, "timed out");
    }
}

void FrameChannel::SendText(FrameKind kind, std::uint32_t requestNumber, const String& text)
{
    constexpr std::size_t maxText = 4096;
    BeginFrame(2 * maxText).WriteStringInternal(std::string_view(text).substr(0, maxText), maxText, utf8Encoding, true);
    Send(kind, requestNumber);
}

Frame FrameChannel::Receive(std::size_t maxPayload, std::chrono::milliseconds timeout)
{
    return ReceiveFrame(maxPayload, timeout, timeout);
}

Frame FrameChannel::ReceiveWhenever(std::size_t maxPayload, std::chrono::milliseconds timeout)
{
    return ReceiveFrame(maxPayload, 0ms, timeout);
}

Frame FrameChannel::ReceiveOwed(FrameKind kind, std::uint32_t requestNumber, std::size_t maxPayload,
                                std::chrono::milliseconds timeout)
{
    const Frame frame = Receive(maxPayload, timeout);
    if (frame.kind == FrameKind::Refusal)
    {
        RemotingReader reader(frame.payload);
        String reason;
        ReadRemote(reader, reason);
        throw TransportException(TransportFailure::Refused, fmt::format("refused: {}", reason));
    }
    if (frame.kind != kind || frame.requestNumber != requestNumber)
    {
        throw TransportException(TransportFailure::Malformed, "malformed frame: not the answer to the request");
    }
    return frame;
}

Frame FrameChannel::ReceiveFrame(std::size_t maxPayload, std::chrono::milliseconds firstTimeout,
                                 std::chrono::milliseconds restTimeout)
{
    std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(begin), buffer.begin() + static_cast<std::ptrdiff_t>(end),
              buffer.begin());
    end -= std::exchange(begin, 0);
    if (buffer.size() > keptBufferSize && end <= initialBufferSize)
    {
        buffer.resize(initialBufferSize);
        buffer.shrink_to_fit();
    }

    hasDeadline = firstTimeout > 0ms;
    if (hasDeadline)
    {
        deadline = Clock::now() + firstTimeout;
    }
    if (end == 0)
    {
        SetReceiveTimeout(firstTimeout);
        ReceiveSome();
    }
    Fill(FrameHeader::size, initialBufferSize, restTimeout);
    const FrameHeader header =
        FrameHeader::Decode(std::span<const std::byte, FrameHeader::size>(buffer.data(), FrameHeader::size));
    if (header.payloadLength > maxPayload)
    {
        throw TransportException(
            TransportFailure::Malformed,
            fmt::format("malformed frame: {} bytes where at most {} are allowed", header.payloadLength, maxPayload));
    }
    const std::size_t frameSize = FrameHeader::size + header.payloadLength;
    Fill(frameSize, frameSize, restTimeout);
    begin = frameSize;
    return {header.kind, header.requestNumber, {buffer.data() + FrameHeader::size, header.payloadLength}};
}

/// Receives until `wanted` bytes are there. The buffer grows with what arrives, not with what is announced.
void FrameChannel::Fill(std::size_t wanted, std::size_t maxSize, std::chrono::milliseconds restTimeout)
{
    while (end < wanted)
    {
        if (!std::exchange(hasDeadline, true))
        {
            deadline = Clock::now() + restTimeout;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (restTimeout > 0ms && left <= 0ms)
        {
            throw TransportException(TransportFailure::TimedOut, "timed out");
        }
        SetReceiveTimeout(restTimeout > 0ms ? left : 0ms);
        if (end == buffer.size())
        {
            buffer.resize(std::min(2 * buffer.size(), std::max(maxSize, buffer.size() + 1)));
        }
        ReceiveSome();
    }
}

void FrameChannel::ReceiveSome()
{
    const auto received =
        Commons::RetryInterrupted([this] { return ::recv(socket.Get(), buffer.data() + end, buffer.size() - end, 0); });
    if (received < 0)
    {
        ThrowSocketError("recv");
    }
    if (received == 0)
    {
        throw TransportException(end == 0 ? TransportFailure::Closed : TransportFailure::Malformed,
                                 end == 0 ? "the connection was closed" : "the connection was closed inside a frame");
    }
    end += static_cast<std::size_t>(received);
}

void FrameChannel::SetReceiveTimeout(std::chrono::milliseconds timeout)
{
    if (timeout != receiveTimeout)
    {
        Rsc::SetReceiveTimeout(socket.Get(), timeout);
        receiveTimeout = timeout;
    }
}

void FrameChannel::Abort() noexcept
{
    ::shutdown(socket.Get(), SHUT_RDWR);
}

} // namespace Vela::System::Rsc
