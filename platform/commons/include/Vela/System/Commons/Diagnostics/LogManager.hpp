#pragma once

#include <Vela/AppDomain.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

#include <memory>

namespace Vela::System::Commons::Diagnostics
{

class LogManagerData;

/// Owns the sinks of a process's log and the levels of its categories; an app-domain singleton.
///
/// A line carries UTC time with microseconds, process name and id, level, category and message. Without a file lines
/// go to standard output, each by one write, so that lines of several processes on one stream do not mix.
class VELA_COMMONS_API LogManager
{
public:
    /// Logs to standard output.
    static LogManager& CreateInstance(LogLevel level);
    /// Logs to a file, appending; its directory is made when it is missing.
    /// @throws Exception when the file cannot be opened
    static LogManager& CreateInstance(LogLevel level, const String& file);
    /// Reads sinks and levels from a log configuration file; `level` holds for categories that it does not name.
    /// @throws XmlException, Exception
    static LogManager& CreateInstanceFromFile(LogLevel level, const String& configFile);
    /// Flushes and closes the sinks; without an instance nothing happens.
    static void DisposeInstance();

    static LogManager* TryGetInstance();

    /// Called by component libraries, so that their loggers write into the host's log.
    static void AssignAppDomain(AppDomain& appDomain);

    LogManager(std::unique_ptr<LogManagerData> managerData);
    LogManager(const LogManager&) = delete;
    LogManager& operator=(const LogManager&) = delete;
    ~LogManager();

    /// The level of categories without one of their own.
    [[nodiscard]] LogLevel GetLevel() const;
    /// Sets the level of a category prefix at run time; an empty prefix means all categories.
    void SetLevel(const String& categoryPrefix, LogLevel level);
    /// Waits until everything written so far has reached the sinks.
    void Flush() noexcept;

private:
    std::unique_ptr<LogManagerData> data;
};

} // namespace Vela::System::Commons::Diagnostics
