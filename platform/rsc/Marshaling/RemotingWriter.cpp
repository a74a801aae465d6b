#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <algorithm>
#include <bit>
#include <limits>

namespace Vela::System::Rsc
{

RemotingWriter::RemotingWriter(std::size_t maxMessageSize)
    : maxSize(maxMessageSize)
{
}

void RemotingWriter::WriteStringInternal(std::string_view text, std::size_t capacity, std::uint8_t encoding,
                                         bool withTag)
{
    if (text.size() > capacity)
    {
        throw RscException("A text of {} bytes exceeds the {} that travel.", text.size(), capacity);
    }
    if (withTag)
    {
        WriteTag(RscTypeCode::String);
    }
    WriteRaw(encoding);
    WriteRaw(static_cast<std::uint32_t>(text.size()));
    WriteBytes(std::as_bytes(std::span(text)));
}

void RemotingWriter::WriteBeginStruct(std::size_t fieldCount)
{
    if (fieldCount > std::numeric_limits<std::uint16_t>::max())
    {
        throw RscException("A structure of {} fields cannot travel.", fieldCount);
    }
    WriteTag(RscTypeCode::Struct);
    WriteRaw(static_cast<std::uint16_t>(fieldCount));
}

void RemotingWriter::WriteBeginArray(std::size_t elementCount)
{
    if (elementCount > std::numeric_limits<std::uint32_t>::max())
    {
        throw RscException("An array of {} elements cannot travel.", elementCount);
    }
    WriteTag(RscTypeCode::Array);
    WriteRaw(static_cast<std::uint32_t>(elementCount));
}

void RemotingWriter::WriteConfirmation(bool hasFailed)
{
    WriteRaw(hasFailed);
}

void RemotingWriter::WriteBytes(std::span<const std::byte> bytes)
{
    if (!bytes.empty())
    {
        std::memcpy(Grow(bytes.size()), bytes.data(), bytes.size());
    }
}

void RemotingWriter::Patch(std::size_t position, std::span<const std::byte> bytes)
{
    if (position > data.size() || bytes.size() > data.size() - position)
    {
        throw ArgumentException::ForParameter("position", "Patch beyond the end of the message.");
    }
    std::copy(bytes.begin(), bytes.end(), data.begin() + static_cast<std::ptrdiff_t>(position));
}

void RemotingWriter::Truncate(std::size_t size)
{
    data.resize(std::min(size, data.size()));
}

void RemotingWriter::Reset(std::size_t newMaxSize)
{
    constexpr std::size_t keptCapacity = 65536;
    if (data.capacity() > keptCapacity)
    {
        std::vector<std::byte>().swap(data);
    }
    data.clear();
    maxSize = newMaxSize;
    hasOverflowed = false;
}

std::byte* RemotingWriter::Grow(std::size_t count)
{
    if (count > maxSize - std::min(maxSize, data.size()))
    {
        hasOverflowed = true;
        throw RscException("The message exceeds {} bytes.", maxSize);
    }
    const std::size_t position = data.size();
    data.resize(position + count);
    return data.data() + position;
}

void RemotingWriter::ToLittleEndian(std::byte* bytes, std::size_t count)
{
    if constexpr (std::endian::native == std::endian::big)
    {
        std::reverse(bytes, bytes + count);
    }
}

} // namespace Vela::System::Rsc
