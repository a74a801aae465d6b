#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace Vela::System::Rsc
{

RemotingReader::RemotingReader(std::span<const std::byte> bytes)
    : message(bytes)
{
}

RscTypeCode RemotingReader::ReadTag()
{
    return static_cast<RscTypeCode>(ReadRaw<std::uint8_t>());
}

void RemotingReader::ReadTag(RscTypeCode expected)
{
    if (const RscTypeCode code = ReadTag(); code != expected)
    {
        Fail(fmt::format("type code {} instead of {}", static_cast<int>(code), static_cast<int>(expected)));
    }
}

String RemotingReader::ReadStringInternal(std::size_t capacity, std::uint8_t encoding, bool withTag)
{
    if (withTag)
    {
        ReadTag(RscTypeCode::String);
    }
    if (const auto code = ReadRaw<std::uint8_t>(); code != encoding)
    {
        Fail(fmt::format("text encoding {} instead of {}", code, encoding));
    }
    const std::size_t length = ReadRaw<std::uint32_t>();
    if (length > capacity)
    {
        Fail(fmt::format("a text of {} bytes where at most {} fit", length, capacity));
    }
    if (length > GetRemaining())
    {
        Fail(fmt::format("a text of {} bytes where {} are left", length, GetRemaining()));
    }
    String text(length, '\0');
    Take(reinterpret_cast<std::byte*>(text.data()), length);
    return text;
}

void RemotingReader::ReadBeginStruct(std::size_t fieldCount)
{
    ReadTag(RscTypeCode::Struct);
    if (const std::size_t count = ReadRaw<std::uint16_t>(); count != fieldCount)
    {
        Fail(fmt::format("a structure of {} fields instead of {}", count, fieldCount));
    }
    Enter();
}

void RemotingReader::ReadEndStruct() noexcept
{
    --depth;
}

std::size_t RemotingReader::ReadBeginArray(std::size_t elementSize)
{
    // Every element takes at least its type code and one byte.
    constexpr std::size_t minElementLength = 2;

    ReadTag(RscTypeCode::Array);
    const std::size_t count = ReadRaw<std::uint32_t>();
    if (count > GetRemaining() / minElementLength)
    {
        Fail(fmt::format("an array of {} elements where {} bytes are left", count, GetRemaining()));
    }
    if (elementSize > 0 && count > (maxElementMemory - elementMemory) / elementSize)
    {
        Fail(fmt::format("arrays that take more than {} bytes", maxElementMemory));
    }
    elementMemory += count * elementSize;
    Enter();
    return count;
}

void RemotingReader::ReadEndArray() noexcept
{
    --depth;
}

bool RemotingReader::ReadConfirmation()
{
    return ReadRaw<bool>();
}

void RemotingReader::ReadEnd() const
{
    if (GetRemaining() > 0)
    {
        Fail(fmt::format("{} bytes too many", GetRemaining()));
    }
}

void RemotingReader::Take(std::byte* target, std::size_t count)
{
    if (count > GetRemaining())
    {
        Fail(fmt::format("{} bytes expected where {} are left", count, GetRemaining()));
    }
    if (count > 0)
    {
        std::memcpy(target, message.data() + position, count);
    }
    position += count;
}

void RemotingReader::ToNativeOrder(std::byte* bytes, std::size_t count)
{
    if constexpr (std::endian::native == std::endian::big)
    {
        std::reverse(bytes, bytes + count);
    }
}

void RemotingReader::Enter()
{
    if (++depth > maxDepth)
    {
        Fail(fmt::format("values nested more than {} deep", maxDepth));
    }
}

bool RemotingReader::ToBool(std::byte value) const
{
    if (value > std::byte{1})
    {
        Fail(fmt::format("{} as a truth value", std::to_integer<int>(value)));
    }
    return value == std::byte{1};
}

void RemotingReader::Fail(const String& what) const
{
    throw RscException("Malformed message at byte {}: {}.", position, what);
}

} // namespace Vela::System::Rsc
