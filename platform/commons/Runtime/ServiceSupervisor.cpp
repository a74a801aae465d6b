#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Runtime/ServiceSupervisor.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace Vela::System::Commons::Runtime
{

namespace
{

Diagnostics::Logger& GetLog()
{
    return Diagnostics::Logger::Get(typeid(ServiceSupervisor));
}

/// 0 for what is no positive number.
std::uint64_t ReadNumber(const String& text)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

String JoinLines(std::initializer_list<std::string_view> assignments)
{
    String message;
    for (const std::string_view assignment : assignments)
    {
        std::replace_copy_if(
            assignment.begin(), assignment.end(), std::back_inserter(message),
            [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
        message += '\n';
    }
    return message;
}

} // namespace

ServiceSupervisor::ServiceSupervisor()
{
    const String name = Environment::TakeInheritedVariable("NOTIFY_SOCKET");
    const String interval = Environment::TakeInheritedVariable("WATCHDOG_USEC");
    const String process = Environment::TakeInheritedVariable("WATCHDOG_PID");
    if (name.empty())
    {
        return;
    }
    try
    {
        Connect(name);
        // Longer ones are no watch any more, and time could not be computed with the longest.
        constexpr std::uint64_t longestTime = std::chrono::microseconds(std::chrono::hours(24)).count();
        if (process.empty() || ReadNumber(process) == static_cast<std::uint64_t>(::getpid()))
        {
            watchdogTime = std::chrono::microseconds(std::min(ReadNumber(interval), longestTime));
        }
    }
    catch (...)
    {
        GetLog().Warning("The service supervisor at '{0}' cannot be told anything: {1}", name,
                         CaughtException::Current().GetText());
    }
}

ServiceSupervisor::~ServiceSupervisor() = default;

void ServiceSupervisor::Connect(const String& name)
{
    const bool isAbstract = name.front() == '@';
    if (!isAbstract && name.front() != '/')
    {
        throw ArgumentException("The name is neither a path nor an abstract one.");
    }
    // A path ends with a zero byte, an abstract name with its length.
    if (name.size() + (isAbstract ? 0 : 1) > sizeof(address.sun_path))
    {
        throw ArgumentException("The name is too long for a socket.");
    }
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), std::begin(address.sun_path));
    if (isAbstract)
    {
        address.sun_path[0] = '\0';
    }
    addressLength = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (isAbstract ? 0 : 1));
    UniqueFd opened(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    constexpr timeval patience{1, 0};
    if (!opened.IsValid() || ::setsockopt(opened.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience)) != 0)
    {
        ThrowSystemError("socket");
    }
    socket = std::move(opened);
}

void ServiceSupervisor::Notify(std::initializer_list<std::string_view> assignments) const noexcept
{
    if (!IsPresent())
    {
        return;
    }
    try
    {
        const String message = JoinLines(assignments);
        // Addressed each time: a supervisor that was restarted meanwhile is found again.
        const auto sent = RetryInterrupted(
            [&]
            {
                return ::sendto(socket.Get(), message.data(), message.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&address), addressLength);
            });
        if (sent < 0)
        {
            ThrowSystemError("sendto");
        }
    }
    catch (...)
    {
        GetLog().Warning("The service supervisor could not be told '{0}': {1}", *assignments.begin(),
                         CaughtException::Current().GetText());
    }
}

} // namespace Vela::System::Commons::Runtime
