#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <Diagnostics/LogSinks.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>
#include <utility>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

constexpr int patience = 1000;

bool AwaitWritable(int descriptor, int milliseconds)
{
    pollfd writable{descriptor, POLLOUT, 0};
    return RetryInterrupted([&] { return ::poll(&writable, 1, milliseconds); }) != 0;
}

/// One write as a rule; the rest of a line follows when the system took only a part.
void WriteAll(int descriptor, std::string_view text)
{
    while (!text.empty())
    {
        const auto count = RetryInterrupted([&] { return ::write(descriptor, text.data(), text.size()); });
        if (count >= 0)
        {
            text.remove_prefix(static_cast<std::size_t>(count));
        }
        else if (errno != EAGAIN || !AwaitWritable(descriptor, patience))
        {
            ThrowSystemError("Could not write log");
        }
    }
}

/// A pipe that has room may have too little of it, or another process may take it first, and the write would wait
/// however long that takes. A description of our own does not, and leaves that which others share as it is; nor does it
/// stay, so that the reader's end comes with the last of the shared ones. Invalid when none is needed.
UniqueFd OpenWithoutWaiting()
{
    struct stat status
    {
    };
    const bool mayWait = ::fstat(STDOUT_FILENO, &status) == 0 && S_ISFIFO(status.st_mode);
    return UniqueFd(mayWait ? ::open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_CLOEXEC) : -1);
}

} // namespace

int GetSyslogPriority(LogLevel level)
{
    switch (level)
    {
    case LogLevel::None:
    case LogLevel::Off:
    case LogLevel::Fatal:
        return LOG_CRIT;
    case LogLevel::Error:
        return LOG_ERR;
    case LogLevel::Warning:
        return LOG_WARNING;
    case LogLevel::Info:
        return LOG_INFO;
    case LogLevel::Debug:
    case LogLevel::Trace:
        break;
    }
    return LOG_DEBUG;
}

void StandardOutputSink::WriteRecord(const LogRecord& record, const String& processName)
{
    WriteText(FormatLine(record, processName));
}

void StandardOutputSink::WriteText(const String& text) const
{
    if (!AwaitWritable(STDOUT_FILENO, IsLosing() ? 0 : patience))
    {
        throw Exception("Nobody reads the standard output");
    }
    const UniqueFd own = OpenWithoutWaiting();
    WriteAll(own.IsValid() ? own.Get() : STDOUT_FILENO, text);
}

FileSink::FileSink(LogLevel maximumLevel, String filePath, const LogRotation& fileRotation)
    : LogSink(maximumLevel)
    , path(std::move(filePath))
    , rotation(fileRotation)
{
    Open();
}

void FileSink::WriteRecord(const LogRecord& record, const String& processName)
{
    const String line = FormatLine(record, processName);
    if (size > 0 && size + line.size() > rotation.maximumSize)
    {
        Rotate();
    }
    if (!file.IsValid())
    {
        Open();
    }
    WriteAll(file.Get(), line);
    size += line.size();
}

void FileSink::Open()
{
    if (const String directory = Io::Path::GetDirectoryName(path); !directory.empty())
    {
        Io::Directory::Create(directory);
    }
    UniqueFd opened(
        RetryInterrupted([this] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644); }));
    struct stat status
    {
    };
    if (!opened.IsValid() || ::fstat(opened.Get(), &status) != 0)
    {
        ThrowSystemError(fmt::format("Could not open log file '{0}'", path));
    }
    file = std::move(opened);
    size = static_cast<std::uint64_t>(status.st_size);
}

void FileSink::Rotate() noexcept
{
    // A file that cannot be moved away is written on: an oversized log is better than none.
    for (unsigned number = rotation.maximumFiles; number > 0; --number)
    {
        const String source = number == 1 ? path : GetOldFile(number - 1);
        static_cast<void>(std::rename(source.c_str(), GetOldFile(number).c_str()));
    }
    if (rotation.maximumFiles == 0)
    {
        static_cast<void>(::unlink(path.c_str()));
    }
    file.Reset();
}

String FileSink::GetOldFile(unsigned number) const
{
    const String name = Io::Path::GetFileName(path);
    const String title = Io::Path::GetFileTitle(path);
    return Io::Path::Combine(Io::Path::GetDirectoryName(path),
                             fmt::format("{}.{}{}", title, number, name.substr(title.size())));
}

void SyslogSink::WriteRecord(const LogRecord& record, const String& processName)
{
    ::syslog(LOG_USER | GetSyslogPriority(record.level), "%s[%d] %s: %s", processName.c_str(), ::getpid(),
             record.category.c_str(), record.text.c_str());
}

} // namespace Vela::System::Commons::Diagnostics
