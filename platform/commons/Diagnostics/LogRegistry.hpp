#pragma once

#include <Vela/System/Commons/Diagnostics/Logger.hpp>

#include <Diagnostics/LogManagerData.hpp>
#include <Diagnostics/LogRing.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// All loggers of a process, and the log manager's data while there is a manager. Without one messages are kept.
class LogRegistry
{
public:
    /// Never destroyed: loggers are used to the very end of the process.
    static LogRegistry& GetInstance();

    Logger& GetLogger(const String& category);
    void Write(const LogRecord& record) noexcept;

    /// Begins to write, first what was kept.
    void Attach(std::shared_ptr<LogManagerData> managerData);
    /// Begins to keep again; from now on errors go to standard output at once, since nobody may come for them.
    void Detach() noexcept;
    /// Writes the errors among the kept messages to standard output and forgets the rest.
    void WriteKeptErrors() noexcept;

    /// Waits for messages that other threads are writing.
    void Flush() noexcept;

    /// Writes the last messages as a crash record shows them.
    void WriteRecentMessages(PlainWriter& writer) const;

    /// Without a lock: for a process that crashes.
    [[nodiscard]] const LogRing& GetRecentMessages() const noexcept
    {
        return recent;
    }

    [[nodiscard]] LogLevel GetLevel() const;
    [[nodiscard]] std::vector<CategoryLevel> GetLevels() const;
    [[nodiscard]] LogHistory GetHistory(std::uint64_t after, std::size_t maximumCount) const;
    void SetLevel(const String& categoryPrefix, LogLevel level);

private:
    [[nodiscard]] std::shared_ptr<LogManagerData> GetData() const;
    void Keep(const LogRecord& record) noexcept;
    void UpdateLevels() noexcept;

    mutable std::mutex mutex;
    std::map<String, std::unique_ptr<Logger>> loggers;
    std::shared_ptr<LogManagerData> data;
    std::vector<LogRecord> kept;
    LogRing recent;
    std::size_t droppedMessages = 0;
    bool hadManager = false;
};

} // namespace Vela::System::Commons::Diagnostics
