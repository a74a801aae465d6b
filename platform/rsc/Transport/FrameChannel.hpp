#pragma once

#include "Transport/Frame.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vela::System::Rsc
{

/// Frames over a connected blocking stream socket: one send and, for frames up to a few kilobytes, one recv each.
/// Used by one thread at a time; only Abort may come from another one, as long as the channel lives.
class FrameChannel
{
public:
    /// @param maxSendTime  how long the other side may take to make room for one frame; 0: no limit
    FrameChannel(Commons::UniqueFd socket, std::chrono::milliseconds maxSendTime);

    /// Begins a frame; the payload goes into the writer.
    RemotingWriter& BeginFrame(std::size_t maxPayload);
    /// Sends the frame begun.
    /// @throws TransportException
    void Send(FrameKind kind, std::uint32_t requestNumber);
    /// BeginFrame, one text, Send.
    void SendText(FrameKind kind, std::uint32_t requestNumber, const String& text);

    /// Receives the next frame.
    /// @param timeout  for the whole frame; 0: no limit
    /// @throws TransportException
    Frame Receive(std::size_t maxPayload, std::chrono::milliseconds timeout);
    /// The same, waiting without limit for the frame to begin and then up to `timeout` for its rest.
    Frame ReceiveWhenever(std::size_t maxPayload, std::chrono::milliseconds timeout);
    /// Receives the frame that the server owes. The text of a refusal becomes the exception's.
    Frame ReceiveOwed(FrameKind kind, std::uint32_t requestNumber, std::size_t maxPayload,
                      std::chrono::milliseconds timeout);

    /// Ends every send and receive, present and future. Thread-safe.
    void Abort() noexcept;

    [[nodiscard]] int GetDescriptor() const noexcept
    {
        return socket.Get();
    }

private:
    using Clock = std::chrono::steady_clock;

    Frame ReceiveFrame(std::size_t maxPayload, std::chrono::milliseconds firstTimeout,
                       std::chrono::milliseconds restTimeout);
    void AwaitRoom(Clock::time_point sendDeadline) const;
    void Fill(std::size_t wanted, std::size_t maxSize, std::chrono::milliseconds restTimeout);
    void ReceiveSome();
    void SetReceiveTimeout(std::chrono::milliseconds timeout);

    Commons::UniqueFd socket;
    std::chrono::milliseconds sendTimeout;
    RemotingWriter writer;
    std::vector<std::byte> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::chrono::milliseconds receiveTimeout{0};
    bool hasDeadline = false;
    Clock::time_point deadline;
};

} // namespace Vela::System::Rsc
