#pragma once

#include "Server/ServerConnection.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace Vela::System::Rsc
{

/// Accepts clients on a Unix and, when there is one, a TCP socket, and serves each on a thread of its own.
class Endpoint : private Commons::Diagnostics::Loggable<Endpoint>
{
public:
    using Clock = std::chrono::steady_clock;

    /// @param tcpSocket  may be invalid
    Endpoint(std::shared_ptr<const ServerData> data, Commons::UniqueFd unixSocket, Commons::UniqueFd tcpSocket);
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;
    /// StopAccepting and CutConnections.
    ~Endpoint();

    /// Takes no more clients; idle connections end, the others after their present answer.
    void StopAccepting() noexcept;
    /// After StopAccepting: waits for the connections to end.
    /// @return whether all have ended
    bool WaitForConnections(Clock::time_point deadline);
    /// Cuts what is left. A thread that is still inside a call then goes on by itself and ends when the call does.
    /// @return how many these are
    std::size_t CutConnections() noexcept;

private:
    /// Where threads report their end. Shared, because a thread may be left behind.
    struct Board;

    struct Worker
    {
        std::shared_ptr<ServerConnection> connection;
        Clock::time_point begin;
        /// Cut for the sake of others; its thread is about to end.
        bool isGivenUp = false;
        /// Set by the thread when nothing but its end is left.
        std::shared_ptr<std::atomic<bool>> hasEnded;
        std::thread thread;
    };

    enum class Transport : std::uint8_t
    {
        Unix,
        Tcp,
    };

    void AcceptLoop();
    void Accept(int listener, Transport transport);
    void Serve(Commons::UniqueFd socket, const ConnectionPeer& peer, RscCaller caller);
    [[nodiscard]] String FindExceededLimit(const ConnectionPeer& peer) const;
    bool EndOldestHandshake(const ConnectionPeer& peer);
    template <typename Predicate>
    [[nodiscard]] std::size_t CountConnections(Predicate&& counts) const;
    void JoinFinished();

    const std::shared_ptr<const ServerData> server;
    Commons::UniqueFd unixListener;
    Commons::UniqueFd tcpListener;
    const std::shared_ptr<Board> board;
    std::map<std::size_t, Worker> workers;
    std::size_t nextWorker = 0;
    /// When nobody could be let in last, for want of descriptors or memory.
    std::optional<Clock::time_point> lastShortage;
    std::thread acceptThread;
};

} // namespace Vela::System::Rsc
