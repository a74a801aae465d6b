#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

#include <cstdint>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// A message that was logged lately.
struct LogEntry
{
    /// Counts the messages of the process from 1; a gap between two entries is what was lost between them.
    std::uint64_t number = 0;
    Chrono::DateTime time;
    LogLevel level = LogLevel::None;
    String category;
    /// Cut when the message was very long.
    String text;
};

/// A part of what was logged lately, oldest first.
struct LogHistory
{
    std::vector<LogEntry> entries;
    /// The number of the last message so far; 0 when there was none.
    std::uint64_t lastNumber = 0;
};

/// The level of a category prefix; the empty prefix stands for all categories without a level of their own.
struct CategoryLevel
{
    String category;
    LogLevel level = LogLevel::None;
};

} // namespace Vela::System::Commons::Diagnostics
