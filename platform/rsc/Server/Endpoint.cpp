#include "Server/Endpoint.hpp"

#include "Transport/TransportException.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <utility>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

/// How long the endpoint rests when the system has no descriptors or threads left.
constexpr int exhaustionPause = 100;
/// In this part of the time that it is given, a client that means it has introduced itself.
constexpr int honestHandshakePart = 20;

} // namespace

struct Endpoint::Board
{
    Board()
        : wakeEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        if (!wakeEvent.IsValid())
        {
            Commons::ThrowSystemError("eventfd");
        }
    }

    void Wake() const noexcept
    {
        static_cast<void>(::eventfd_write(wakeEvent.Get(), 1));
    }

    void ClearWake() const noexcept
    {
        eventfd_t count = 0;
        static_cast<void>(::eventfd_read(wakeEvent.Get(), &count));
    }

    /// Must not fail: there is nobody in the thread to tell.
    void ReportEnd(std::atomic<bool>& hasEnded)
    {
        {
            const std::lock_guard lock(mutex);
            hasEnded = true;
            --running;
            ended.notify_all();
        }
        Wake();
    }

    const Commons::UniqueFd wakeEvent;
    std::mutex mutex;
    std::condition_variable ended;
    std::size_t running = 0;
    bool isStopping = false;
};

Endpoint::Endpoint(std::shared_ptr<const ServerData> data, Commons::UniqueFd unixSocket, Commons::UniqueFd tcpSocket)
    : server(std::move(data))
    , unixListener(std::move(unixSocket))
    , tcpListener(std::move(tcpSocket))
    , board(std::make_shared<Board>())
    , acceptThread([this] { AcceptLoop(); })
{
}

Endpoint::~Endpoint()
{
    StopAccepting();
    CutConnections();
}

void Endpoint::AcceptLoop()
{
    Commons::Threading::Thread::SetCurrentName("rsc-accept");
    for (;;)
    {
        std::array<pollfd, 3> descriptors{pollfd{board->wakeEvent.Get(), POLLIN, 0},
                                          pollfd{unixListener.Get(), POLLIN, 0}, pollfd{tcpListener.Get(), POLLIN, 0}};
        ::poll(descriptors.data(), descriptors.size(), -1);
        if (descriptors[0].revents != 0)
        {
            board->ClearWake();
            const std::lock_guard lock(board->mutex);
            if (board->isStopping)
            {
                return;
            }
        }
        JoinFinished();
        if (descriptors[1].revents != 0)
        {
            Accept(unixListener.Get(), Transport::Unix);
        }
        if (descriptors[2].revents != 0)
        {
            Accept(tcpListener.Get(), Transport::Tcp);
        }
    }
}

void Endpoint::Accept(int listener, Transport transport)
{
    Commons::UniqueFd socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket.IsValid())
    {
        if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS)
        {
            const String cause = Commons::GetErrorText(errno);
            const auto now = Clock::now();
            const auto last = std::exchange(lastShortage, now);
            if (!last || now - *last > PeerLog::period)
            {
                log.Warning("Cannot accept connections: {0}", cause);
            }
            pollfd wake{board->wakeEvent.Get(), POLLIN, 0};
            ::poll(&wake, 1, exhaustionPause);
        }
        return;
    }
    try
    {
        RscCaller caller;
        auto peer = ConnectionPeer::MakeTcp();
        if (transport == Transport::Unix)
        {
            const PeerCredentials credentials = GetPeerCredentials(socket.Get());
            caller.userId = credentials.userId;
            caller.processId = credentials.processId;
            peer = ConnectionPeer::MakeUnix(credentials);
        }
        String limit = FindExceededLimit(peer);
        if (!limit.empty() && EndOldestHandshake(peer))
        {
            limit = FindExceededLimit(peer);
        }
        if (!limit.empty())
        {
            server->peerLog->Warn(peer, connectionsSubject,
                                  fmt::format("Refused a connection of {}: {}.", peer.ToString(), limit));
            FrameChannel(std::move(socket), 1ms).SendText(FrameKind::Refusal, 0, "too many connections are open");
            return;
        }
        Serve(std::move(socket), peer, std::move(caller));
    }
    catch (const TransportException&)
    {
        // The client does not wait for what it is told.
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        log.Warning("Cannot serve a connection: {0}", failure.GetText());
    }
}

void Endpoint::Serve(Commons::UniqueFd socket, const ConnectionPeer& peer, RscCaller caller)
{
    auto connection = std::make_shared<ServerConnection>(server, std::move(socket), peer, std::move(caller));
    const auto hasEnded = std::make_shared<std::atomic<bool>>(false);
    const std::size_t id = nextWorker++;
    Worker& worker = workers[id];
    worker.connection = connection;
    worker.hasEnded = hasEnded;
    worker.begin = Clock::now();
    {
        const std::lock_guard lock(board->mutex);
        ++board->running;
    }
    try
    {
        worker.thread = std::thread(
            [connection, sharedBoard = board, hasEnded]
            {
                Commons::Threading::Thread::SetCurrentName("rsc-server");
                const Commons::Diagnostics::AlternateSignalStack signalStack;
                connection->Serve();
                sharedBoard->ReportEnd(*hasEnded);
            });
    }
    catch (...)
    {
        workers.erase(id);
        const std::lock_guard lock(board->mutex);
        --board->running;
        throw;
    }
}

template <typename Predicate>
std::size_t Endpoint::CountConnections(Predicate&& counts) const
{
    return static_cast<std::size_t>(std::count_if(workers.begin(), workers.end(),
                                                  [&counts](const auto& entry) {
                                                      return !entry.second.isGivenUp &&
                                                             counts(entry.second.connection->GetPeer());
                                                  }));
}

/// What stands against one more connection of a peer; empty: nothing.
String Endpoint::FindExceededLimit(const ConnectionPeer& peer) const
{
    const std::size_t limit = server->options.maxConnections;
    const std::size_t peerLimit = 2 * server->options.maxConnectionsPerProcess;
    if (CountConnections([&peer](const ConnectionPeer& other) { return other == peer; }) >= peerLimit)
    {
        return fmt::format("{} of its connections are open, which is the limit", peerLimit);
    }
    const auto isOwn = [](const ConnectionPeer& other)
    {
        return other.GetKind() == ConnectionPeer::Kind::OwnProcess;
    };
    // Whatever strangers do, the system's own processes reach each other.
    const std::size_t strangersLimit = std::max<std::size_t>(1, limit / 2);
    if (!isOwn(peer) && CountConnections(std::not_fn(isOwn)) >= strangersLimit)
    {
        return fmt::format("{} connections of other users and of TCP clients are open, which is the limit",
                           strangersLimit);
    }
    if (CountConnections([](const ConnectionPeer&) { return true; }) >= limit)
    {
        return fmt::format("{} connections are open, which is the limit", limit);
    }
    return {};
}

/// Clients that connect and then say nothing must not keep others out: the oldest of a peer's connections that is not
/// introduced makes room, once it has had the time in which an honest client is through.
bool Endpoint::EndOldestHandshake(const ConnectionPeer& peer)
{
    const auto latest = Clock::now() - server->options.frameTimeout / honestHandshakePart;
    // Workers are in the order in which they began.
    const auto oldest = std::find_if(workers.begin(), workers.end(),
                                     [&](const auto& entry)
                                     {
                                         return !entry.second.isGivenUp && entry.second.begin <= latest &&
                                                entry.second.connection->GetPeer() == peer &&
                                                !entry.second.connection->IsIntroduced();
                                     });
    if (oldest == workers.end())
    {
        return false;
    }
    oldest->second.isGivenUp = true;
    oldest->second.connection->Abort();
    server->peerLog->Warn(peer, connectionsSubject,
                          fmt::format("Gave up a connection of {} that was not introduced yet.", peer.ToString()));
    return true;
}

void Endpoint::JoinFinished()
{
    for (auto worker = workers.begin(); worker != workers.end();)
    {
        if (*worker->second.hasEnded)
        {
            worker->second.thread.join();
            worker = workers.erase(worker);
        }
        else
        {
            ++worker;
        }
    }
}

void Endpoint::StopAccepting() noexcept
{
    if (!acceptThread.joinable())
    {
        return;
    }
    {
        const std::lock_guard lock(board->mutex);
        board->isStopping = true;
    }
    board->Wake();
    acceptThread.join();
    unixListener.Reset();
    tcpListener.Reset();
    for (const auto& [id, worker] : workers)
    {
        worker.connection->Close();
    }
}

bool Endpoint::WaitForConnections(Clock::time_point deadline)
{
    bool haveEnded = false;
    {
        std::unique_lock lock(board->mutex);
        haveEnded = board->ended.wait_until(lock, deadline, [this] { return board->running == 0; });
    }
    JoinFinished();
    return haveEnded;
}

std::size_t Endpoint::CutConnections() noexcept
{
    if (workers.empty())
    {
        // Threads that were left behind earlier still report their end, to nobody.
        return 0;
    }
    for (const auto& [id, worker] : workers)
    {
        worker.connection->Abort();
    }
    // A thread that only has its answer to send ends at once now; one inside a call does not.
    WaitForConnections(Clock::now() + 200ms);
    for (auto& [id, worker] : workers)
    {
        worker.thread.detach();
    }
    return std::exchange(workers, {}).size();
}

} // namespace Vela::System::Rsc
