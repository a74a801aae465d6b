#include <Diagnostics/LogManagerData.hpp>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

LogLevels::LogLevels(LogLevel defaultLevel)
    : defaultLevel(defaultLevel)
{
}

void LogLevels::Set(const String& categoryPrefix, LogLevel level)
{
    if (categoryPrefix.empty())
    {
        defaultLevel = level;
        prefixes.clear();
        return;
    }
    prefixes.insert_or_assign(categoryPrefix, level);
}

LogLevel LogLevels::GetDefault() const noexcept
{
    return defaultLevel;
}

LogLevel LogLevels::Get(const String& category) const
{
    std::string_view prefix = category;
    while (!prefixes.empty() && !prefix.empty())
    {
        if (const auto found = prefixes.find(prefix); found != prefixes.end())
        {
            return found->second;
        }
        const auto dot = prefix.rfind('.');
        prefix = prefix.substr(0, dot == std::string_view::npos ? 0 : dot);
    }
    return defaultLevel;
}

std::vector<CategoryLevel> LogLevels::GetAll() const
{
    std::vector<CategoryLevel> all{{String(), defaultLevel}};
    for (const auto& [category, level] : prefixes)
    {
        all.push_back({category, level});
    }
    return all;
}

LogManagerData::LogManagerData(LogLevels logLevels, std::vector<std::unique_ptr<LogSink>> logSinks)
    : levels(std::move(logLevels))
    , processName(GetLogProcessName())
    , sinks(std::move(logSinks))
{
}

void LogManagerData::Write(const LogRecord& record) noexcept
{
    for (const auto& sink : sinks)
    {
        sink->Write(record, processName);
    }
}

void LogManagerData::Flush() noexcept
{
    for (const auto& sink : sinks)
    {
        sink->Flush();
    }
}

} // namespace Vela::System::Commons::Diagnostics
