#include <Diagnostics/LogSink.hpp>
#include <fmt/format.h>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

LogSink::LogSink(LogLevel maximumLevel)
    : level(maximumLevel)
{
}

LogSink::~LogSink() = default;

void LogSink::Write(const LogRecord& record, const String& processName) noexcept
{
    if (record.level > level)
    {
        return;
    }
    const std::lock_guard lock(mutex);
    try
    {
        if (lostMessages > 0)
        {
            ReportLostMessages(processName);
        }
        WriteRecord(record, processName);
    }
    catch (...)
    {
        // A full disk or a closed pipe must not stop the process that reports about itself.
        ++lostMessages;
    }
}

void LogSink::Flush() noexcept
{
    const std::lock_guard lock(mutex);
}

void LogSink::ReportLostMessages(const String& processName)
{
    static const String category = "Vela.System.Commons.Diagnostics.LogSink";
    WriteRecord({Chrono::DateTime::GetUtcNow(), LogLevel::Warning, category,
                 fmt::format("{} messages could not be written here.", lostMessages)},
                processName);
    lostMessages = 0;
}

} // namespace Vela::System::Commons::Diagnostics
