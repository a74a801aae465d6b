#pragma once

#include "Transport/Socket.hpp"

#include <Vela/String.hpp>

#include <sys/types.h>

#include <cstdint>
#include <tuple>

namespace Vela::System::Rsc
{

/// To whose account a connection goes: each process of the system's own user has one, each other user has one for all
/// of the processes, and so have all TCP clients together, of whom nothing is known.
class ConnectionPeer
{
public:
    enum class Kind : std::uint8_t
    {
        OwnProcess,
        OtherUser,
        Tcp,
    };

    static ConnectionPeer MakeTcp() noexcept;
    /// @param credentials  of the process at the other end of a Unix socket
    static ConnectionPeer MakeUnix(const PeerCredentials& credentials) noexcept;

    [[nodiscard]] Kind GetKind() const noexcept
    {
        return kind;
    }

    /// "process 12", "user 1000" or "TCP".
    [[nodiscard]] String ToString() const;

    bool operator==(const ConnectionPeer&) const = default;

    bool operator<(const ConnectionPeer& other) const noexcept
    {
        return std::tie(kind, id) < std::tie(other.kind, other.id);
    }

private:
    ConnectionPeer(Kind peerKind, std::int64_t peerId) noexcept;

    Kind kind;
    std::int64_t id;
};

} // namespace Vela::System::Rsc
