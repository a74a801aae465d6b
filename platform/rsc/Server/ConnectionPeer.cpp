#include "Server/ConnectionPeer.hpp"

#include <fmt/format.h>
#include <unistd.h>

namespace Vela::System::Rsc
{

ConnectionPeer::ConnectionPeer(Kind peerKind, std::int64_t peerId) noexcept
    : kind(peerKind)
    , id(peerId)
{
}

ConnectionPeer ConnectionPeer::MakeTcp() noexcept
{
    return {Kind::Tcp, 0};
}

ConnectionPeer ConnectionPeer::MakeUnix(const PeerCredentials& credentials) noexcept
{
    return credentials.userId == ::geteuid() ? ConnectionPeer(Kind::OwnProcess, credentials.processId)
                                             : ConnectionPeer(Kind::OtherUser, credentials.userId);
}

String ConnectionPeer::ToString() const
{
    switch (kind)
    {
    case Kind::OwnProcess:
        return fmt::format("process {}", id);
    case Kind::OtherUser:
        return fmt::format("user {}", id);
    default:
        return "TCP";
    }
}

} // namespace Vela::System::Rsc
