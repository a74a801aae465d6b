#include "Harness/RawPingPong.hpp"

#include "Rows/Rows.hpp"

#include <Vela/System/Commons/SystemError.hpp>

#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cstring>
#include <iostream>
#include <thread>

namespace Vela::Benchmarks
{

using System::Commons::ThrowSystemError;
using System::Commons::UniqueFd;

namespace
{

sockaddr_un MakeAddress(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

void Echo(const UniqueFd& socket)
{
    std::array<char, 4096> buffer{};
    for (;;)
    {
        const auto received = ::recv(socket.Get(), buffer.data(), buffer.size(), 0);
        if (received <= 0 ||
            ::send(socket.Get(), buffer.data(), static_cast<std::size_t>(received), MSG_NOSIGNAL) != received)
        {
            return;
        }
    }
}

} // namespace

RawClient::RawClient(const std::string& path, std::size_t messageSize)
    : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    , message(messageSize)
{
    const sockaddr_un address = MakeAddress(path);
    if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    {
        ThrowSystemError("connect");
    }
}

void RawClient::PingPong()
{
    const auto size = static_cast<ssize_t>(message.size());
    if (::send(socket.Get(), message.data(), message.size(), MSG_NOSIGNAL) != size ||
        ::recv(socket.Get(), message.data(), message.size(), MSG_WAITALL) != size)
    {
        ThrowSystemError("ping-pong");
    }
}

RawServer::RawServer(std::string socketPath)
    : path(std::move(socketPath))
    , process(Child::StartRole("raw-server", {path}))
{
    process.AwaitLine("ready");
}

void ServeRawPingPong(const Arguments& arguments)
{
    const UniqueFd listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = MakeAddress(arguments.at(0));
    if (::bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(listener.Get(), SOMAXCONN) != 0)
    {
        ThrowSystemError("listen");
    }
    std::thread acceptor(
        [&listener]
        {
            for (int socket = ::accept(listener.Get(), nullptr, nullptr); socket >= 0;
                 socket = ::accept(listener.Get(), nullptr, nullptr))
            {
                std::thread([connection = UniqueFd(socket)] { Echo(connection); }).detach();
            }
        });
    std::cout << "ready" << std::endl;
    AwaitEndOfInput();
    ::shutdown(listener.Get(), SHUT_RDWR);
    acceptor.join();
}

} // namespace Vela::Benchmarks
