#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <Diagnostics/JournalSink.hpp>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <string_view>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

constexpr sockaddr_un journalAddress{AF_UNIX, "/run/systemd/journal/socket"};

/// A value of several lines is preceded by its size, as eight bytes with the lowest first.
void AppendField(String& message, std::string_view name, std::string_view value)
{
    message += name;
    if (value.find('\n') == std::string_view::npos)
    {
        message += '=';
    }
    else
    {
        message += '\n';
        for (unsigned shift = 0; shift < 64; shift += 8)
        {
            message += static_cast<char>(static_cast<std::uint64_t>(value.size()) >> shift);
        }
    }
    message += value;
    message += '\n';
}

String FormatFields(const LogRecord& record, const String& processName)
{
    const char* level = FindEnumString(record.level);
    String message;
    AppendField(message, "MESSAGE", record.text);
    AppendField(message, "PRIORITY", std::to_string(GetSyslogPriority(record.level)));
    AppendField(message, "SYSLOG_IDENTIFIER", processName);
    AppendField(message, "VELA_PROCESS", processName);
    AppendField(message, "VELA_CATEGORY", record.category);
    AppendField(message, "VELA_LEVEL", level == nullptr ? "" : level);
    return message;
}

/// Each line of the stream is a message of its own to the journal.
String AddPriority(const String& lines, LogLevel level)
{
    const String prefix = fmt::format("<{}>", GetSyslogPriority(level));
    String text;
    for (std::size_t start = 0; start < lines.size();)
    {
        const std::size_t end = lines.find('\n', start) + 1;
        text.append(prefix).append(lines, start, end - start);
        start = end;
    }
    return text;
}

/// The journal tells a process which device and inode its standard output has, so that one that was redirected later
/// does not take a file for the journal.
bool IsStandardOutputJournal()
{
    String stream;
    struct stat status
    {
    };
    return Environment::GetVariableValue("JOURNAL_STREAM", stream) && ::fstat(STDOUT_FILENO, &status) == 0 &&
           stream == fmt::format("{}:{}", status.st_dev, status.st_ino);
}

} // namespace

JournalSink::JournalSink(LogLevel maximumLevel)
    : StandardOutputSink(maximumLevel)
    , socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    constexpr timeval patience{1, 0};
    static_cast<void>(::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience)));
}

void JournalSink::WriteRecord(const LogRecord& record, const String& processName)
{
    if (!Send(FormatFields(record, processName)))
    {
        WriteText(AddPriority(FormatLine(record, processName), record.level));
    }
}

bool JournalSink::Send(const String& message) const noexcept
{
    const int flags = MSG_NOSIGNAL | (IsLosing() ? MSG_DONTWAIT : 0);
    return RetryInterrupted(
               [&]
               {
                   return ::sendto(socket.Get(), message.data(), message.size(), flags,
                                   reinterpret_cast<const sockaddr*>(&journalAddress), sizeof(journalAddress));
               }) >= 0;
}

std::unique_ptr<LogSink> MakeStandardOutputSink(LogLevel maximumLevel)
{
    if (IsStandardOutputJournal())
    {
        return std::make_unique<JournalSink>(maximumLevel);
    }
    return std::make_unique<StandardOutputSink>(maximumLevel);
}

} // namespace Vela::System::Commons::Diagnostics
