#pragma once

#include "Server/ConnectionPeer.hpp"
#include "Server/PeerLog.hpp"
#include "Server/ServiceRegistry.hpp"
#include "Transport/FrameChannel.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace Vela::System::Rsc
{

class AccessControl;
class Secret;

/// What all connections of an endpoint share.
struct ServerData
{
    String processName;
    std::uint64_t instanceId = 0;
    RscManagerOptions options;
    std::shared_ptr<ServiceRegistry> registry;
    std::shared_ptr<const AccessControl> accessControl;
    /// Set when there is a TCP endpoint.
    std::shared_ptr<const Secret> secret;
    const std::unique_ptr<PeerLog> peerLog = std::make_unique<PeerLog>();
};

/// Serves one client, call by call, on one thread.
class ServerConnection : private Commons::Diagnostics::Loggable<ServerConnection>
{
public:
    /// @param knownCaller  what the system tells of the caller; nothing of a TCP client
    ServerConnection(std::shared_ptr<const ServerData> server, Commons::UniqueFd socket,
                     const ConnectionPeer& connectionPeer, RscCaller knownCaller);

    /// The thread's work, until the client leaves, misbehaves or the connection is closed.
    void Serve() noexcept;

    /// Ends the connection as soon as no call is in progress: now, or after the present answer. Thread-safe.
    void Close() noexcept;
    /// Ends the connection now; the answer of a call in progress is lost. Thread-safe.
    void Abort() noexcept;

    /// Whether the client has proved and told who it is. Thread-safe.
    [[nodiscard]] bool IsIntroduced() const noexcept
    {
        return isIntroduced;
    }

    [[nodiscard]] const ConnectionPeer& GetPeer() const noexcept
    {
        return peer;
    }

private:
    void Authenticate();
    void Introduce();
    void LogEnd(const String& reason) const;
    void ServeCalls();
    void Answer(const Frame& request);
    void AnswerOpen(const Frame& request);
    void AnswerCall(const Frame& request);
    [[noreturn]] void Refuse(const String& reason);

    const std::shared_ptr<const ServerData> server;
    const ConnectionPeer peer;
    FrameChannel channel;
    RscCaller caller;
    const bool isForeign;
    std::atomic<bool> isIntroduced = false;
    /// What the client keeps the server waiting for, as far as there is a limit to it.
    const char* awaited = "its introduction";

    std::mutex mutex;
    bool isBusy = false;
    bool isClosing = false;
};

} // namespace Vela::System::Rsc
