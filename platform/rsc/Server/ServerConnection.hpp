#pragma once

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
};

/// Serves one client, call by call, on one thread.
class ServerConnection : private Commons::Diagnostics::Loggable<ServerConnection>
{
public:
    enum class Kind : std::uint8_t
    {
        Unix,
        Tcp,
    };

    ServerConnection(std::shared_ptr<const ServerData> server, Commons::UniqueFd socket, Kind socketKind);

    /// The thread's work, until the client leaves, misbehaves or the connection is closed.
    void Serve() noexcept;

    /// Ends the connection as soon as no call is in progress: now, or after the present answer. Thread-safe.
    void Close() noexcept;
    /// Ends the connection now; the answer of a call in progress is lost. Thread-safe.
    void Abort() noexcept;

private:
    void Authenticate();
    void Introduce();
    void ServeCalls();
    void Answer(const Frame& request);
    void AnswerOpen(const Frame& request);
    void AnswerCall(const Frame& request);
    [[noreturn]] void Refuse(const String& reason);

    const std::shared_ptr<const ServerData> server;
    const Kind kind;
    FrameChannel channel;
    RscCaller caller;
    bool isForeign = false;

    std::mutex mutex;
    bool isBusy = false;
    bool isClosing = false;
};

} // namespace Vela::System::Rsc
