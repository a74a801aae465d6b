#include <Diagnostics/PlainWriter.hpp>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <ctime>

namespace Vela::System::Commons::Diagnostics
{

void PlainWriter::AddTarget(int descriptor) noexcept
{
    if (descriptor >= 0 && targetCount < targets.size())
    {
        targets[targetCount++] = descriptor;
    }
}

PlainWriter& PlainWriter::Text(const char* text) noexcept
{
    for (; *text != '\0'; ++text)
    {
        Append(*text);
    }
    return *this;
}

PlainWriter& PlainWriter::Text(const char* text, std::size_t size) noexcept
{
    for (const char* end = text + size; text != end && *text != '\0'; ++text)
    {
        Append(static_cast<unsigned char>(*text) < ' ' ? ' ' : *text);
    }
    return *this;
}

PlainWriter& PlainWriter::Number(std::uint64_t number, unsigned minimumDigits) noexcept
{
    std::array<char, 20> digits{};
    std::size_t count = 0;
    do
    {
        digits[count++] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number > 0 || count < minimumDigits);
    while (count > 0)
    {
        Append(digits[--count]);
    }
    return *this;
}

PlainWriter& PlainWriter::Address(std::uintptr_t address) noexcept
{
    Text("0x");
    bool hasBegun = false;
    for (int shift = static_cast<int>(sizeof(address) * 8) - 4; shift >= 0; shift -= 4)
    {
        const auto digit = (address >> static_cast<unsigned>(shift)) & 0xFU;
        hasBegun = hasBegun || digit != 0 || shift == 0;
        if (hasBegun)
        {
            Append("0123456789abcdef"[digit]);
        }
    }
    return *this;
}

PlainWriter& PlainWriter::Time(std::int64_t secondsSinceEpoch) noexcept
{
    return Clock(secondsSinceEpoch, "-", ":").Text("Z");
}

PlainWriter& PlainWriter::CompactTime() noexcept
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    constexpr long nanosecondsInMicrosecond = 1000;
    const auto microseconds = static_cast<std::uint64_t>(now.tv_nsec / nanosecondsInMicrosecond);
    return Clock(now.tv_sec, "", "").Text(".").Number(microseconds, 6).Text("Z");
}

PlainWriter& PlainWriter::Clock(std::int64_t secondsSinceEpoch, const char* dash, const char* colon) noexcept
{
    using namespace std::chrono;
    const sys_time<duration<std::int64_t>> time{duration<std::int64_t>(secondsSinceEpoch)};
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{time - day};
    Number(static_cast<std::uint64_t>(static_cast<int>(date.year())), 4).Text(dash);
    Number(static_cast<unsigned>(date.month()), 2).Text(dash);
    Number(static_cast<unsigned>(date.day()), 2).Text("T");
    Number(static_cast<std::uint64_t>(clock.hours().count()), 2).Text(colon);
    Number(static_cast<std::uint64_t>(clock.minutes().count()), 2).Text(colon);
    return Number(static_cast<std::uint64_t>(clock.seconds().count()), 2);
}

void PlainWriter::EndLine() noexcept
{
    line[length++] = '\n';
    for (std::size_t index = 0; index < targetCount; ++index)
    {
        // Who does not read keeps nobody waiting for more than one line.
        constexpr int patience = 200;
        pollfd writable{targets[index], POLLOUT, 0};
        if (targets[index] >= 0 && ::poll(&writable, 1, patience) == 0)
        {
            targets[index] = -1;
        }
        for (std::size_t written = 0; targets[index] >= 0 && written < length;)
        {
            const auto count = ::write(targets[index], line.data() + written, length - written);
            if (count == 0 || (count < 0 && errno != EINTR))
            {
                break;
            }
            written += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }
    length = 0;
}

const char* PlainWriter::GetLine() noexcept
{
    line[length] = '\0';
    return line.data();
}

void PlainWriter::Append(char character) noexcept
{
    // Room for the end of the line is kept.
    if (length + 1 < line.size())
    {
        line[length++] = character;
    }
}

} // namespace Vela::System::Commons::Diagnostics
