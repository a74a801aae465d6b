#include "LogReader.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>

namespace Vela::System::Kiro::Testing
{

namespace
{

constexpr std::size_t timeStampSize = sizeof("2024-08-01T12:34:56.123456Z") - 1;
constexpr const char* continuationIndent = "    ";

/// Takes "Info  Plant.Pump: The pump runs." apart.
LogMessage ParseMessage(const String& line)
{
    LogMessage message;
    const std::size_t levelEnd = std::min(line.find(' '), line.size());
    TryGetEnumValue(line.substr(0, levelEnd).c_str(), message.level);
    const std::size_t categoryBegin = std::min(line.find_first_not_of(' ', levelEnd), line.size());
    const std::size_t categoryEnd = std::min(line.find(": ", categoryBegin), line.size());
    message.category = line.substr(categoryBegin, categoryEnd - categoryBegin);
    message.text = line.substr(std::min(categoryEnd + 2, line.size()));
    return message;
}

/// Waits until a file has changed since the last wait.
class FileWatch
{
public:
    explicit FileWatch(const String& file)
        : descriptor(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
    {
        if (!descriptor.IsValid() || ::inotify_add_watch(descriptor.Get(), file.c_str(), IN_MODIFY) < 0)
        {
            Commons::ThrowSystemError("inotify");
        }
    }

    void Wait(std::chrono::milliseconds time) const
    {
        pollfd input{descriptor.Get(), POLLIN, 0};
        if (::poll(&input, 1, static_cast<int>(time.count())) > 0)
        {
            std::array<char, 4096> events{};
            while (::read(descriptor.Get(), events.data(), events.size()) > 0)
            {
            }
        }
    }

private:
    const Commons::UniqueFd descriptor;
};

} // namespace

LogReader::LogReader(String logFile, const String& processName)
    : file(std::move(logFile))
    , processMark(fmt::format(" {}[{}] ", processName, ::getpid()))
{
}

std::vector<LogMessage> LogReader::Read() const
{
    std::vector<LogMessage> messages;
    std::ifstream stream(file, std::ios::binary);
    String line;
    // A line without an end is still being written.
    while (std::getline(stream, line) && !stream.eof())
    {
        if (line.find(processMark, timeStampSize) == timeStampSize)
        {
            messages.push_back(ParseMessage(line.substr(timeStampSize + processMark.size())));
        }
        else if (!messages.empty())
        {
            const std::size_t indent = line.starts_with(continuationIndent) ? String(continuationIndent).size() : 0;
            messages.back().text += "\n" + line.substr(indent);
        }
    }
    return messages;
}

LogMessage LogReader::Await(const String& text, std::chrono::seconds patience) const
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const FileWatch watch(file);
    for (;;)
    {
        const std::vector<LogMessage> messages = Read();
        const auto found = std::ranges::find_if(messages, [&text](const LogMessage& message)
                                                { return message.text.find(text) != String::npos; });
        if (found != messages.end())
        {
            return *found;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
        {
            String log;
            for (const LogMessage& message : messages)
            {
                log += fmt::format("\n    {} {}: {}", message.level, message.category, message.text);
            }
            throw Exception("Nothing with '{0}' in it was logged within {1} s, but this:{2}", text, patience.count(),
                            log);
        }
        watch.Wait(left);
    }
}

} // namespace Vela::System::Kiro::Testing
