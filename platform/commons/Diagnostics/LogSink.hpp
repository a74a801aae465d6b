#pragma once

#include <Diagnostics/LogRecord.hpp>

#include <mutex>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// Where messages end up. Thread-safe; a sink that cannot write loses messages, counts them, and tells their number
/// as soon as it can write again.
class LogSink
{
public:
    /// Takes messages of at most this level; Trace takes all.
    explicit LogSink(LogLevel maximumLevel);
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;
    virtual ~LogSink();

    void Write(const LogRecord& record, const String& processName) noexcept;
    /// Waits for a message that another thread is writing.
    void Flush() noexcept;

protected:
    /// True while nothing could be written since the last success.
    [[nodiscard]] bool IsLosing() const noexcept
    {
        return lostMessages > 0;
    }

    /// Writes one message through to the system; under the sink's lock.
    /// @throws anything, when the message is lost
    virtual void WriteRecord(const LogRecord& record, const String& processName) = 0;

private:
    void ReportLostMessages(const String& processName);

    const LogLevel level;
    std::mutex mutex;
    unsigned long lostMessages = 0;
};

} // namespace Vela::System::Commons::Diagnostics
