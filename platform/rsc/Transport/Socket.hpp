#pragma once

#include <Vela/System/Commons/UniqueFd.hpp>

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>

namespace Vela::System::Rsc
{

/// The process at the other end of a Unix socket.
struct PeerCredentials
{
    uid_t userId;
    pid_t processId;
};

/// How long a receive waits; 0: no limit.
/// @throws TransportException
void SetReceiveTimeout(int socket, std::chrono::milliseconds timeout);
/// How long a connection or a send waits; 0: no limit.
/// @throws TransportException
void SetSendTimeout(int socket, std::chrono::milliseconds timeout);
/// @throws TransportException
PeerCredentials GetPeerCredentials(int socket);

/// A socket that listens on a port of the loopback interface; port 0 lets the system choose.
/// @throws Exception
Commons::UniqueFd ListenOnPort(std::uint16_t port);
std::uint16_t GetSocketPort(int socket);
/// Connects to a port of the loopback interface; an invalid descriptor when nobody listens there.
/// @throws TransportException
Commons::UniqueFd ConnectToPort(std::uint16_t port);

} // namespace Vela::System::Rsc
