#pragma once

#include <Vela/AppDomain.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Diagnostics/LogHistory.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

#include <memory>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

class LogManagerData;

/// Owns the sinks of a process's log and the levels of its categories; an app-domain singleton.
///
/// A line carries UTC time with microseconds, process name and id, level, category and message. Without a file lines
/// go to standard output, each by one write, so that lines of several processes on one stream do not mix. A text of
/// several lines stays one message: its further lines are indented by four blanks. A file is rotated at 10 MiB, and
/// three old ones are kept. What cannot be written is lost and counted; logging never throws.
class VELA_COMMONS_API LogManager
{
public:
    /// Logs to standard output. At most one manager at a time; this holds for all three.
    /// @throws InvalidOperationException when there is one already
    static LogManager& CreateInstance(LogLevel level);
    /// Logs to a file, appending; its directory is made when it is missing.
    /// @throws Exception when the file cannot be opened
    static LogManager& CreateInstance(LogLevel level, const String& file);
    /// Reads sinks and levels from a log configuration file; `level` holds for categories that it does not name.
    /// @throws XmlException, Exception
    static LogManager& CreateInstanceFromFile(LogLevel level, const String& configFile);
    /// Closes the sinks; without an instance nothing happens. Another one may be created afterwards.
    static void DisposeInstance();
    /// Reads a log configuration file as CreateInstanceFromFile does and opens nothing.
    /// @throws XmlException
    static void CheckConfiguration(const String& configFile);

    static LogManager* TryGetInstance();

    /// Called by component libraries, so that their loggers write into the host's log. The first application domain of
    /// a process counts; another one is ignored.
    static void AssignAppDomain(AppDomain& appDomain);

    /// Writes the fatal messages and errors that are still kept to standard output: for a process that ends without
    /// leaving main, before it ever had a manager.
    static void WriteKeptErrors() noexcept;

    /// Used by the operations above.
    explicit LogManager(std::shared_ptr<LogManagerData> managerData);
    LogManager(const LogManager&) = delete;
    LogManager& operator=(const LogManager&) = delete;
    ~LogManager();

    /// The level of categories without one of their own.
    [[nodiscard]] LogLevel GetLevel() const;
    /// Sets the level of a category prefix at run time; an empty prefix means all categories.
    void SetLevel(const String& categoryPrefix, LogLevel level);
    /// All levels that are set: that of the empty prefix first, then the others by category.
    [[nodiscard]] std::vector<CategoryLevel> GetLevels() const;
    /// What was logged lately, as far as it is still in memory (32 KiB): the oldest, at most `maximumCount`, of the
    /// messages behind number `after`. The answer to a count of 0 tells the number of the newest message.
    [[nodiscard]] LogHistory GetHistory(std::uint64_t after, std::size_t maximumCount) const;
    /// Waits until the messages being written by other threads have reached the sinks. One's own messages have done
    /// so when the logger returns.
    void Flush() noexcept;
};

} // namespace Vela::System::Commons::Diagnostics
