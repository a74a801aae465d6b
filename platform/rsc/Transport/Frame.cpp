#include "Transport/Frame.hpp"

#include "Transport/TransportException.hpp"

#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace Vela::System::Rsc
{

namespace
{

/// "VRSC" as it stands on the wire.
constexpr std::uint32_t magic = 0x43535256;

} // namespace

std::array<std::byte, FrameHeader::size> FrameHeader::Encode() const
{
    std::array<std::byte, size> bytes{};
    const auto put = [&bytes](std::size_t position, std::uint32_t value)
    {
        for (std::size_t i = 0; i < 4; ++i)
        {
            bytes.at(position + i) = static_cast<std::byte>((value >> (8 * i)) & 0xffU);
        }
    };
    put(0, magic);
    bytes[4] = std::byte{protocolVersion};
    bytes[5] = static_cast<std::byte>(kind);
    put(8, requestNumber);
    put(12, payloadLength);
    return bytes;
}

FrameHeader FrameHeader::Decode(std::span<const std::byte, size> bytes)
{
    RemotingReader reader(bytes);
    if (reader.ReadRaw<std::uint32_t>() != magic)
    {
        throw TransportException(TransportFailure::Malformed, "malformed frame: no header");
    }
    if (const auto version = reader.ReadRaw<std::uint8_t>(); version != protocolVersion)
    {
        throw TransportException(
            TransportFailure::Malformed,
            fmt::format("malformed frame: protocol version {} instead of {}", version, protocolVersion));
    }
    const auto kind = reader.ReadRaw<std::uint8_t>();
    const auto zero = reader.ReadRaw<std::uint16_t>();
    if (kind < static_cast<std::uint8_t>(FrameKind::Hello) || kind > static_cast<std::uint8_t>(FrameKind::Proof) ||
        zero != 0)
    {
        throw TransportException(TransportFailure::Malformed, fmt::format("malformed frame: kind {}", kind));
    }
    const auto requestNumber = reader.ReadRaw<std::uint32_t>();
    return {static_cast<FrameKind>(kind), requestNumber, reader.ReadRaw<std::uint32_t>()};
}

} // namespace Vela::System::Rsc
