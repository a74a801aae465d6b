#include "Server/Endpoint.hpp"

#include "Transport/TransportException.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

/// How long the endpoint rests when the system has no descriptors or threads left.
constexpr int exhaustionPause = 100;

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

    void ReportEnd(std::size_t worker)
    {
        {
            const std::lock_guard lock(mutex);
            finished.push_back(worker);
            --running;
            ended.notify_all();
        }
        Wake();
    }

    const Commons::UniqueFd wakeEvent;
    std::mutex mutex;
    std::condition_variable ended;
    std::vector<std::size_t> finished;
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
            Accept(unixListener.Get(), ServerConnection::Kind::Unix);
        }
        if (descriptors[2].revents != 0)
        {
            Accept(tcpListener.Get(), ServerConnection::Kind::Tcp);
        }
    }
}

void Endpoint::Accept(int listener, ServerConnection::Kind kind)
{
    Commons::UniqueFd socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket.IsValid())
    {
        if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS)
        {
            log.Warning("Cannot accept a connection: {0}", Commons::GetErrorText(errno));
            pollfd wake{board->wakeEvent.Get(), POLLIN, 0};
            ::poll(&wake, 1, exhaustionPause);
        }
        return;
    }
    try
    {
        if (workers.size() >= server->options.maxConnections)
        {
            log.Warning("Refused a connection: {0} connections are open.", workers.size());
            FrameChannel(std::move(socket), 1ms).SendText(FrameKind::Refusal, 0, "too many connections are open");
            return;
        }
        auto connection = std::make_shared<ServerConnection>(server, std::move(socket), kind);
        const std::size_t id = nextWorker++;
        Worker& worker = workers[id];
        worker.connection = connection;
        {
            const std::lock_guard lock(board->mutex);
            ++board->running;
        }
        try
        {
            worker.thread = std::thread(
                [connection, sharedBoard = board, id]
                {
                    Commons::Threading::Thread::SetCurrentName("rsc-server");
                    connection->Serve();
                    sharedBoard->ReportEnd(id);
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
    catch (...)
    {
        const auto failure = CaughtException::Current();
        log.Warning("Cannot serve a connection: {0}", failure.GetText());
    }
}

void Endpoint::JoinFinished()
{
    std::vector<std::size_t> finished;
    {
        const std::lock_guard lock(board->mutex);
        finished.swap(board->finished);
    }
    for (const std::size_t id : finished)
    {
        const auto worker = workers.find(id);
        worker->second.thread.join();
        workers.erase(worker);
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
