#include "Transport/Socket.hpp"

#include "Transport/TransportException.hpp"

#include <Vela/System/Commons/SystemError.hpp>

#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace Vela::System::Rsc
{

using Commons::ThrowSystemError;
using Commons::UniqueFd;

namespace
{

[[noreturn]] void ThrowTransportError(const char* what)
{
    throw TransportException(TransportFailure::System, fmt::format("{}: {}", what, Commons::GetErrorText(errno)));
}

sockaddr_in MakeLoopbackAddress(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Requests are answered one by one, so there is nothing to gather before it is sent.
void DisableDelay(int socket)
{
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
}

void SetTimeout(int socket, int option, std::chrono::milliseconds timeout)
{
    timeval time{};
    time.tv_sec = static_cast<decltype(time.tv_sec)>(timeout.count() / 1000);
    time.tv_usec = static_cast<decltype(time.tv_usec)>(timeout.count() % 1000 * 1000);
    if (::setsockopt(socket, SOL_SOCKET, option, &time, sizeof(time)) != 0)
    {
        ThrowTransportError("setsockopt");
    }
}

} // namespace

void SetReceiveTimeout(int socket, std::chrono::milliseconds timeout)
{
    SetTimeout(socket, SO_RCVTIMEO, timeout);
}

void SetSendTimeout(int socket, std::chrono::milliseconds timeout)
{
    SetTimeout(socket, SO_SNDTIMEO, timeout);
}

PeerCredentials GetPeerCredentials(int socket)
{
    ucred credentials{};
    socklen_t length = sizeof(credentials);
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0)
    {
        ThrowTransportError("getsockopt(SO_PEERCRED)");
    }
    return {credentials.uid, credentials.pid};
}

UniqueFd ListenOnPort(std::uint16_t port)
{
    UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    const sockaddr_in address = MakeLoopbackAddress(port);
    if (!socket.IsValid() || ::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) != 0 ||
        ::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(socket.Get(), SOMAXCONN) != 0)
    {
        ThrowSystemError(fmt::format("Cannot listen on TCP port {}", port));
    }
    DisableDelay(socket.Get());
    return socket;
}

std::uint16_t GetSocketPort(int socket)
{
    sockaddr_in address{};
    socklen_t length = sizeof(address);
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    {
        ThrowTransportError("getsockname");
    }
    return ntohs(address.sin_port);
}

UniqueFd ConnectToPort(std::uint16_t port)
{
    UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.IsValid())
    {
        ThrowTransportError("socket");
    }
    const sockaddr_in address = MakeLoopbackAddress(port);
    if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    {
        if (errno == ECONNREFUSED)
        {
            return UniqueFd();
        }
        ThrowTransportError("connect");
    }
    DisableDelay(socket.Get());
    return socket;
}

} // namespace Vela::System::Rsc
