#include "Script.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <ThreadRest.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <tuple>

namespace Vela::Testing
{

namespace
{

using System::Commons::Environment;

/// Derived from a standard exception, with its code in this library.
class OwnException : public std::runtime_error
{
public:
    using runtime_error::runtime_error;

    [[nodiscard]] const char* what() const noexcept override
    {
        return runtime_error::what();
    }
};

/// Neither a platform nor a standard exception.
struct UnknownFailure
{
    String text;
};

void Throw(String text)
{
    const String kind = TakeWord(text);
    if (kind == "platform")
    {
        throw InvalidOperationException(text);
    }
    if (kind == "standard")
    {
        throw std::runtime_error(text);
    }
    if (kind == "own")
    {
        throw OwnException(text);
    }
    throw UnknownFailure{text};
}

void Hang()
{
    while (true)
    {
        pause();
    }
}

void WaitForWriter(const String& fifo)
{
    // Each side's opening returns when the other side has opened, too.
    const int fd = open(fifo.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
    {
        throw Exception("Cannot open '{0}'.", fifo);
    }
    char ignored = 0;
    while (read(fd, &ignored, 1) > 0)
    {
    }
    close(fd);
}

/// Asks the system manager, wherever it is.
void Request(const String& operation)
{
    using System::Kiro::Services::Internal::ISystemManagerService;
    using System::Kiro::Services::Internal::SystemManagerServiceProxyFactory;
    static const std::map<String, void (ISystemManagerService::*)()> operations{
        {"Shutdown", &ISystemManagerService::Shutdown},
        {"Restart", &ISystemManagerService::Restart},
        {"PowerDown", &ISystemManagerService::PowerDown},
    };
    const auto service = System::Rsc::ServiceManager::GetService(SystemManagerServiceProxyFactory::GetInstance());
    ((*service).*operations.at(operation))();
}

} // namespace

String TakeWord(String& text)
{
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t end = std::min(text.find_first_of(" \t", begin), text.size());
    String word = text.substr(begin, end - begin);
    text.erase(0, std::min(text.find_first_not_of(" \t", end), text.size()));
    return word;
}

void Script::AddLines(const String& text, const String& componentName)
{
    std::istringstream stream(text);
    for (String line; std::getline(stream, line);)
    {
        const String component = TakeWord(line);
        if (component == "*" || component == componentName)
        {
            String step = TakeWord(line);
            lines.push_back({std::move(step), line});
        }
    }
}

std::vector<String> Script::GetActions(const String& step) const
{
    std::vector<String> actions;
    for (const Line& line : lines)
    {
        if (line.step == step)
        {
            actions.push_back(line.action);
        }
    }
    return actions;
}

void Act(const String& action)
{
    String text = action;
    const String verb = TakeWord(text);
    if (verb == "throw")
    {
        Throw(text);
    }
    else if (verb == "sleep")
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(text)));
    }
    else if (verb == "hang")
    {
        Hang();
    }
    else if (verb == "await")
    {
        WaitForWriter(text);
    }
    else if (verb == "settle")
    {
        AwaitRest(getppid(), text);
    }
    else if (verb == "crash")
    {
        std::ignore = raise(SIGSEGV);
    }
    else if (verb == "kill")
    {
        std::ignore = raise(SIGKILL);
    }
    else if (verb == "request")
    {
        Request(text);
    }
    else if (verb == "exit")
    {
        _exit(std::stoi(text));
    }
    else
    {
        throw ArgumentException("Unknown action '{0}'.", action);
    }
}

void Trace(const String& process, const String& component, const String& step)
{
    const String path = Environment::GetVariableValueOr("RECORDING_TRACE", "");
    if (path.empty())
    {
        return;
    }
    const String line = process + " " + component + " " + step + "\n";
    const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0 || write(fd, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
    {
        // Destructors trace, too, so there is nobody to throw to.
        fmt::print(stderr, "Cannot write '{0}' to '{1}'.\n", step, path);
    }
    if (fd >= 0)
    {
        close(fd);
    }
}

String ReadFile(const String& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace Vela::Testing
