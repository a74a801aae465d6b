#pragma once

#include <Vela/System/Commons/Diagnostics/LogHistory.hpp>

#include <Diagnostics/LogSink.hpp>

#include <map>
#include <memory>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// Levels by category: the longest prefix that ends at a dot counts.
class LogLevels
{
public:
    explicit LogLevels(LogLevel defaultLevel = LogLevel::Info);
    /// An empty prefix sets the default and forgets all others.
    void Set(const String& categoryPrefix, LogLevel level);
    [[nodiscard]] LogLevel GetDefault() const noexcept;
    [[nodiscard]] LogLevel Get(const String& category) const;
    /// The default first, then the others by category.
    [[nodiscard]] std::vector<CategoryLevel> GetAll() const;

private:
    LogLevel defaultLevel;
    /// Found by parts of a category without a copy of it.
    std::map<String, LogLevel, std::less<>> prefixes;
};

/// What a log manager is made from.
class LogManagerData
{
public:
    LogManagerData(LogLevels logLevels, std::vector<std::unique_ptr<LogSink>> logSinks);
    void Write(const LogRecord& record) noexcept;
    void Flush() noexcept;

    /// Under the registry's lock once the manager exists.
    LogLevels levels;

private:
    const String processName;
    const std::vector<std::unique_ptr<LogSink>> sinks;
};

} // namespace Vela::System::Commons::Diagnostics
