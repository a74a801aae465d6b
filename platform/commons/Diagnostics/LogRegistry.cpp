#include <Diagnostics/JournalSink.hpp>
#include <Diagnostics/LogRegistry.hpp>
#include <fmt/format.h>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

/// Room for the messages of a start; errors have as much again for themselves.
constexpr std::size_t maximumKept = 1000;
constexpr std::size_t maximumKeptErrors = 2 * maximumKept;

bool IsError(LogLevel level)
{
    return level <= LogLevel::Error;
}

void WriteToStandardOutput(const LogRecord& record) noexcept
{
    try
    {
        static LogSink& sink = *MakeStandardOutputSink(LogLevel::Trace).release();
        sink.Write(record, GetLogProcessName());
    }
    catch (...)
    {
        // Without memory or an executable there is nobody left to tell.
        return;
    }
}

/// At the end of a process that never got as far as its log manager, its errors must not be lost.
const struct ExitWriter
{
    ~ExitWriter()
    {
        LogRegistry::GetInstance().WriteKeptErrors();
    }
} exitWriter;

} // namespace

LogRegistry& LogRegistry::GetInstance()
{
    static auto& registry = *new LogRegistry;
    return registry;
}

Logger& LogRegistry::GetLogger(const String& category)
{
    {
        const std::lock_guard lock(mutex);
        if (const auto found = loggers.find(category); found != loggers.end())
        {
            return *found->second;
        }
    }
    // Nothing is allocated under the lock: an exception that nobody catches ends the process where it is thrown, with
    // all locks held, and the process's last words need this one.
    decltype(loggers) added;
    added.emplace(category, std::make_unique<Logger>(category));
    const std::lock_guard lock(mutex);
    const auto [position, isNew, unused] = loggers.insert(added.extract(added.begin()));
    if (isNew)
    {
        position->second->SetLevel(data == nullptr ? LogLevel::Trace : data->levels.Get(category));
    }
    return *position->second;
}

void LogRegistry::Write(const LogRecord& record) noexcept
{
    std::shared_ptr<LogManagerData> current;
    {
        const std::lock_guard lock(mutex);
        current = data;
        if (current == nullptr && !(hadManager && IsError(record.level)))
        {
            Keep(record);
            return;
        }
        recent.Append(record);
    }
    if (current != nullptr)
    {
        current->Write(record);
    }
    else
    {
        WriteToStandardOutput(record);
    }
}

void LogRegistry::Keep(const LogRecord& record) noexcept
{
    try
    {
        if (kept.size() < (IsError(record.level) ? maximumKeptErrors : maximumKept))
        {
            kept.push_back(record);
            return;
        }
    }
    catch (const std::bad_alloc&)
    {
        // Counted as one for which there is no room, which is what happened.
    }
    ++droppedMessages;
}

void LogRegistry::Attach(std::shared_ptr<LogManagerData> managerData)
{
    const std::lock_guard lock(mutex);
    data = std::move(managerData);
    hadManager = true;
    UpdateLevels();
    for (const auto& record : std::exchange(kept, {}))
    {
        if (record.level <= data->levels.Get(record.category))
        {
            recent.Append(record);
            data->Write(record);
        }
    }
    if (const auto dropped = std::exchange(droppedMessages, 0); dropped > 0)
    {
        static const String category = "Vela.System.Commons.Diagnostics.LogManager";
        data->Write({Chrono::DateTime::GetUtcNow(), LogLevel::Warning, category,
                     fmt::format("{} messages from before logging began are lost.", dropped)});
    }
}

void LogRegistry::Detach() noexcept
{
    const std::lock_guard lock(mutex);
    data.reset();
    UpdateLevels();
}

void LogRegistry::WriteKeptErrors() noexcept
{
    std::vector<LogRecord> records;
    {
        const std::lock_guard lock(mutex);
        records.swap(kept);
    }
    for (const auto& record : records)
    {
        if (IsError(record.level))
        {
            WriteToStandardOutput(record);
        }
    }
}

void LogRegistry::Flush() noexcept
{
    if (const auto current = GetData())
    {
        current->Flush();
    }
}

void LogRegistry::WriteRecentMessages(PlainWriter& writer) const
{
    const std::lock_guard lock(mutex);
    recent.Write(writer, "");
}

std::shared_ptr<LogManagerData> LogRegistry::GetData() const
{
    const std::lock_guard lock(mutex);
    return data;
}

LogLevel LogRegistry::GetLevel() const
{
    const std::lock_guard lock(mutex);
    return data == nullptr ? LogLevel::None : data->levels.GetDefault();
}

std::vector<CategoryLevel> LogRegistry::GetLevels() const
{
    const std::lock_guard lock(mutex);
    return data == nullptr ? std::vector<CategoryLevel>() : data->levels.GetAll();
}

LogHistory LogRegistry::GetHistory(std::uint64_t after, std::size_t maximumCount) const
{
    const std::lock_guard lock(mutex);
    return recent.Read(after, maximumCount);
}

void LogRegistry::SetLevel(const String& categoryPrefix, LogLevel level)
{
    const std::lock_guard lock(mutex);
    if (data != nullptr)
    {
        data->levels.Set(categoryPrefix, level);
        UpdateLevels();
    }
}

void LogRegistry::UpdateLevels() noexcept
{
    for (const auto& [category, logger] : loggers)
    {
        // What is kept is judged by its level when it is written.
        logger->SetLevel(data == nullptr ? LogLevel::Trace : data->levels.Get(category));
    }
}

} // namespace Vela::System::Commons::Diagnostics
