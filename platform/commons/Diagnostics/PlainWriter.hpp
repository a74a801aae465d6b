#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Vela::System::Commons::Diagnostics
{

/// Puts lines together and writes them to descriptors by nothing but system calls: for signal handlers. What cannot be
/// written is lost, and who does not take a line for a while gets none any more.
class PlainWriter
{
public:
    /// Invalid ones are left out.
    void AddTarget(int descriptor) noexcept;

    PlainWriter& Text(const char* text) noexcept;
    /// At most `length` bytes; control characters become blanks.
    PlainWriter& Text(const char* text, std::size_t length) noexcept;
    PlainWriter& Number(std::uint64_t number, unsigned minimumDigits = 1) noexcept;
    PlainWriter& Address(std::uintptr_t address) noexcept;
    /// Seconds since 1970 as UTC: 2024-08-01T12:34:56Z.
    PlainWriter& Time(std::int64_t secondsSinceEpoch) noexcept;
    /// The current time for a name: 20240801T123456.123456Z.
    PlainWriter& CompactTime() noexcept;
    /// Ends the line and writes it.
    void EndLine() noexcept;

    /// What stands in the present line, zero-terminated.
    [[nodiscard]] const char* GetLine() noexcept;
    void Clear() noexcept
    {
        length = 0;
    }

private:
    PlainWriter& Clock(std::int64_t secondsSinceEpoch, const char* dash, const char* colon) noexcept;

    void Append(char character) noexcept;

    static constexpr std::size_t mostTargets = 2;

    std::array<int, mostTargets> targets{};
    std::size_t targetCount = 0;
    std::array<char, 1024> line{};
    std::size_t length = 0;
};

} // namespace Vela::System::Commons::Diagnostics
