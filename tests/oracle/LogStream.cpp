#include "LogStream.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

namespace Vela::Testing
{

using namespace System::Commons;
using Diagnostics::LogManager;

LogLine LogLine::Parse(const std::string& text)
{
    LogLine line;
    std::istringstream stream(text);
    std::string time;
    stream >> time >> line.process >> line.level >> line.category >> std::ws;
    std::getline(stream, line.message);
    line.process.erase(std::min(line.process.find('['), line.process.size()));
    if (!line.category.empty())
    {
        line.category.pop_back();
    }
    return line;
}

std::string LogLine::ToString() const
{
    return fmt::format("{} {}: {}", level, category.substr(category.rfind('.') + 1), message);
}

LogStream::LogStream()
    : memory(memfd_create("log", MFD_CLOEXEC))
{
    if (!memory.IsValid())
    {
        ThrowSystemError("Could not make a file in memory");
    }
    LogManager::CreateInstance(Diagnostics::LogLevel::Trace, fmt::format("/proc/self/fd/{}", memory.Get()));
}

LogStream::~LogStream()
{
    LogManager::DisposeInstance();
}

std::vector<LogLine> LogStream::Take()
{
    LogManager::TryGetInstance()->Flush();
    struct stat status
    {
    };
    std::string text;
    if (::fstat(memory.Get(), &status) == 0)
    {
        text.resize(static_cast<std::size_t>(status.st_size));
    }
    if (::pread(memory.Get(), text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()) ||
        ::ftruncate(memory.Get(), 0) != 0)
    {
        ThrowSystemError("Could not read the log");
    }
    std::vector<LogLine> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
    {
        lines.push_back(LogLine::Parse(line));
    }
    return lines;
}

} // namespace Vela::Testing
