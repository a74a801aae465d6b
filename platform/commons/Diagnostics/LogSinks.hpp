#pragma once

#include <Vela/System/Commons/UniqueFd.hpp>

#include <Diagnostics/LogSink.hpp>

#include <cstdint>

namespace Vela::System::Commons::Diagnostics
{

/// The level in the numbers of the system's log and journal.
[[nodiscard]] int GetSyslogPriority(LogLevel level);

/// Writes lines to standard output, each by one system call. A reader that does not read is waited for a second; from
/// then on messages are lost until it reads again.
class StandardOutputSink : public LogSink
{
public:
    using LogSink::LogSink;

protected:
    void WriteRecord(const LogRecord& record, const String& processName) override;
    void WriteText(const String& text) const;
};

/// When a log file gives way to a fresh one.
struct LogRotation
{
    /// In bytes; a single line may be longer.
    std::uint32_t maximumSize = 10U * 1024 * 1024;
    /// How many old files are kept; file.log becomes file.1.log, that one file.2.log and so on.
    std::uint32_t maximumFiles = 3;
};

/// Appends lines to a file and rotates it. Nothing is kept back in the process: what was logged before a crash is in
/// the file.
class FileSink : public LogSink
{
public:
    /// Makes the file's directory when it is missing.
    /// @throws Exception when the file cannot be opened
    FileSink(LogLevel maximumLevel, String filePath, const LogRotation& fileRotation);

protected:
    void WriteRecord(const LogRecord& record, const String& processName) override;

private:
    void Open();
    void Rotate() noexcept;
    [[nodiscard]] String GetOldFile(unsigned number) const;

    const String path;
    const LogRotation rotation;
    UniqueFd file;
    std::uint64_t size = 0;
};

/// Hands messages to the system's log, which adds time, process id and level itself.
class SyslogSink : public LogSink
{
public:
    using LogSink::LogSink;

protected:
    void WriteRecord(const LogRecord& record, const String& processName) override;
};

} // namespace Vela::System::Commons::Diagnostics
