#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Vela::System::Rsc
{

/// What a frame is for. The numbers are part of the protocol.
///
/// A connection begins with Challenge and Proof on TCP (see Secret), then Hello and Welcome; from then on the client
/// sends Open or Call and the server answers each with one Response of the same request number. A Refusal, with its
/// reason as text, may stand in the place of any frame that the server owes.
enum class FrameKind : std::uint8_t
{
    Hello = 1,
    Welcome = 2,
    Open = 3,
    Call = 4,
    Response = 5,
    Refusal = 6,
    Challenge = 7,
    Proof = 8,
};

/// A received frame; the payload is valid until the next one is received.
struct Frame
{
    FrameKind kind;
    std::uint32_t requestNumber;
    std::span<const std::byte> payload;
};

/// What stands in front of a payload: magic (4 bytes), protocol version (1), kind (1), zero (2), request number (4) and
/// payload length (4), little endian.
struct FrameHeader
{
    static constexpr std::size_t size = 16;
    static constexpr std::uint8_t protocolVersion = 1;

    FrameKind kind;
    std::uint32_t requestNumber;
    std::uint32_t payloadLength;

    [[nodiscard]] std::array<std::byte, size> Encode() const;
    /// @throws TransportException (Malformed) for anything that is not a header of this protocol
    static FrameHeader Decode(std::span<const std::byte, size> bytes);
};

} // namespace Vela::System::Rsc
