#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <initializer_list>
#include <string_view>

namespace Vela::System::Commons::Runtime
{

/// The service supervisor that started this process and wants to know how it does, spoken to as sd_notify(3) describes:
/// one datagram of lines "NAME=value" to the socket that NOTIFY_SOCKET names, a path or "@" and an abstract name.
///
/// Thread-safe. Without a supervisor an object holds no descriptor, and its operations do nothing.
class VELA_COMMONS_API ServiceSupervisor
{
public:
    /// Takes NOTIFY_SOCKET, WATCHDOG_USEC and WATCHDOG_PID out of the environment, so that no child takes itself for
    /// the service. A socket that cannot be used is logged and counts as no supervisor. Before other threads read the
    /// environment without the platform's lock.
    ServiceSupervisor();
    ServiceSupervisor(const ServiceSupervisor&) = delete;
    ServiceSupervisor& operator=(const ServiceSupervisor&) = delete;
    ~ServiceSupervisor();

    [[nodiscard]] bool IsPresent() const noexcept
    {
        return socket.IsValid();
    }

    /// How often the supervisor must hear a keep-alive at least; 0: it does not expect any of this process.
    [[nodiscard]] std::chrono::microseconds GetWatchdogTime() const noexcept
    {
        return watchdogTime;
    }

    /// Sends assignments such as "READY=1", all in one datagram. Control characters in them become blanks. Waits for a
    /// supervisor that does not read no longer than a second; a message that cannot be sent is logged and lost.
    void Notify(std::initializer_list<std::string_view> assignments) const noexcept;

private:
    void Connect(const String& name);

    UniqueFd socket;
    sockaddr_un address{};
    socklen_t addressLength = 0;
    std::chrono::microseconds watchdogTime{0};
};

} // namespace Vela::System::Commons::Runtime
