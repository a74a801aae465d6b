#pragma once

#include <Vela/System/Commons/Diagnostics/LogHistory.hpp>

#include <Diagnostics/LogRecord.hpp>
#include <Diagnostics/PlainWriter.hpp>

#include <array>
#include <cstddef>

namespace Vela::System::Commons::Diagnostics
{

/// The last messages of a process in memory of a fixed size: taking one allocates nothing, and old ones make room. Not
/// thread-safe.
class LogRing
{
public:
    static constexpr std::size_t capacity = std::size_t{32} * 1024;
    static constexpr std::size_t maximumText = 2048;

    void Append(const LogRecord& record) noexcept;
    /// The oldest, at most `maximumCount`, of the messages behind number `after`.
    [[nodiscard]] LogHistory Read(std::uint64_t after, std::size_t maximumCount) const;
    /// Writes the last messages, a line each behind an indent, oldest first. Async-signal-safe: one that is being taken
    /// meanwhile ends the list.
    void Write(PlainWriter& writer, const char* indent) const noexcept;

private:
    struct Header
    {
        std::uint64_t number;
        Chrono::DateTime time;
        const String* category;
        std::uint32_t textSize;
        LogLevel level;
    };

    [[nodiscard]] static std::size_t GetSize(std::size_t textSize) noexcept;
    [[nodiscard]] Header GetHeader(std::size_t position) const noexcept;
    /// The position of the entry behind the one at `position`.
    [[nodiscard]] std::size_t GetNext(std::size_t position) const noexcept;
    void DropOldest() noexcept;

    std::array<char, capacity> memory{};
    std::size_t first = 0;
    std::size_t end = 0;
    /// Where entries stop before they go on at the beginning.
    std::size_t turn = capacity;
    std::size_t count = 0;
    std::uint64_t lastNumber = 0;
};

} // namespace Vela::System::Commons::Diagnostics
