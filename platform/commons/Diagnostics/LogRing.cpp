#include <Diagnostics/LogRing.hpp>

#include <algorithm>
#include <cstring>

namespace Vela::System::Commons::Diagnostics
{

std::size_t LogRing::GetSize(std::size_t textSize) noexcept
{
    return sizeof(Header) + textSize;
}

LogRing::Header LogRing::GetHeader(std::size_t position) const noexcept
{
    // Entries stand at any address, so they are copied.
    Header header{};
    std::memcpy(&header, memory.data() + position, sizeof(header));
    return header;
}

std::size_t LogRing::GetNext(std::size_t position) const noexcept
{
    const std::size_t next = position + GetSize(GetHeader(position).textSize);
    return next == turn ? 0 : next;
}

void LogRing::DropOldest() noexcept
{
    first = GetNext(first);
    --count;
    if (first == 0)
    {
        turn = capacity;
    }
}

void LogRing::Append(const LogRecord& record) noexcept
{
    const std::size_t textSize = std::min(record.text.size(), maximumText);
    const std::size_t size = GetSize(textSize);
    if (end + size > capacity)
    {
        while (count > 0 && first >= end)
        {
            DropOldest();
        }
        turn = end;
        end = 0;
    }
    while (count > 0 && first >= end && first < end + size)
    {
        DropOldest();
    }
    if (count == 0)
    {
        first = end;
        turn = capacity;
    }
    const Header header{++lastNumber, record.time, &record.category, static_cast<std::uint32_t>(textSize),
                        record.level};
    std::memcpy(memory.data() + end, &header, sizeof(header));
    std::memcpy(memory.data() + end + sizeof(header), record.text.data(), textSize);
    end += size;
    ++count;
}

LogHistory LogRing::Read(std::uint64_t after, std::size_t maximumCount) const
{
    // Numbers are consecutive: the oldest entry's tells where to begin.
    const std::uint64_t known = std::max<std::uint64_t>(after, lastNumber - count);
    std::size_t wanted = known < lastNumber ? static_cast<std::size_t>(lastNumber - known) : 0;
    std::size_t skipped = count - wanted;
    wanted = std::min(wanted, maximumCount);
    LogHistory history;
    history.lastNumber = lastNumber;
    history.entries.reserve(wanted);
    std::size_t position = first;
    for (; skipped > 0; --skipped)
    {
        position = GetNext(position);
    }
    for (; wanted > 0; --wanted)
    {
        const Header header = GetHeader(position);
        history.entries.push_back({header.number, header.time, header.level, *header.category,
                                   String(memory.data() + position + sizeof(Header), header.textSize)});
        position = GetNext(position);
    }
    return history;
}

void LogRing::Write(PlainWriter& writer, const char* indent) const noexcept
{
    constexpr std::size_t mostLines = 32;
    constexpr std::array levels{"", "", "Fatal", "Error", "", "Warning", "Info", "Debug", "Trace"};
    constexpr std::int64_t microsecondsInSecond = 1'000'000;
    std::size_t position = first;
    for (std::size_t left = count; left > 0; --left)
    {
        const Header header = position + sizeof(Header) <= capacity ? GetHeader(position) : Header{};
        const auto level = static_cast<std::size_t>(header.level);
        if (header.category == nullptr || position + GetSize(header.textSize) > capacity || level >= levels.size())
        {
            return;
        }
        if (left <= mostLines)
        {
            writer.Text(indent).Time(header.time.GetMicroseconds() / microsecondsInSecond);
            writer.Text(" ").Text(levels[level]).Text(" ").Text(header.category->c_str()).Text(": ");
            writer.Text(memory.data() + position + sizeof(Header), header.textSize).EndLine();
        }
        position = GetNext(position);
    }
}

} // namespace Vela::System::Commons::Diagnostics
