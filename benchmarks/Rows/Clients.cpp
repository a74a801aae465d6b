#include "Harness/ProcessFigures.hpp"
#include "Harness/RawPingPong.hpp"
#include "Harness/RemotePeer.hpp"
#include "Rows/Rows.hpp"

#include <fmt/format.h>

#include <barrier>
#include <thread>

namespace Vela::Benchmarks
{

namespace
{

constexpr unsigned clientCounts[] = {1, 4, 16, 64};
constexpr unsigned mostClients = 64;

/// Lets that many threads make their calls at once.
/// @param call  gets the client's number
/// @return microseconds per call of them all
template <typename Call>
double MeasureAtOnce(unsigned clients, unsigned calls, const Call& call)
{
    // Both times are taken while everybody stands at the gate.
    std::vector<Clock::time_point> times;
    std::barrier gate(static_cast<std::ptrdiff_t>(clients), [&times]() noexcept { times.push_back(Clock::now()); });
    std::vector<std::jthread> threads;
    for (unsigned client = 0; client < clients; ++client)
    {
        threads.emplace_back(
            [&, client]
            {
                gate.arrive_and_wait();
                for (unsigned i = 0; i < calls; ++i)
                {
                    call(client);
                }
                gate.arrive_and_wait();
            });
    }
    threads.clear();
    return std::chrono::duration<double, std::micro>(times.at(1) - times.at(0)).count() / (clients * calls);
}

/// What a server holds for its connections.
struct Footprint
{
    explicit Footprint(const Child& server)
        : memory(static_cast<double>(GetProportionalMemory(server.GetId())))
        , threads(static_cast<double>(GetThreadCount(server.GetId())))
    {
    }

    double memory;
    double threads;
};

Comparison PerConnection(double few, double many, double rawFew, double rawMany)
{
    return Compare({(many - few) / mostClients}, {(rawMany - rawFew) / mostClients});
}

} // namespace

std::vector<Row> MeasureClients(Effort effort)
{
    const RemotingScope remoting;
    const RemotePeer peer;
    const RawServer server(remoting.GetDirectory() / "raw");
    const Footprint few(peer.GetProcess());
    const Footprint rawFew(server.GetProcess());
    std::vector<RawClient> rawClients;
    for (unsigned client = 0; client < mostClients; ++client)
    {
        rawClients.emplace_back(server.GetPath(), emptyRequestSize);
        rawClients.back().PingPong();
    }

    MeasureAtOnce(mostClients, 1, [&](unsigned) { peer->Gather(mostClients); });
    const Footprint many(peer.GetProcess());
    const Footprint rawMany(server.GetProcess());

    const unsigned allCalls = effort.Choose(12'800, 64);
    std::vector<Row> rows;
    for (const unsigned clients : clientCounts)
    {
        const unsigned calls = allCalls / clients;
        const auto comparison = Compare(
            fmt::format("{} clients", clients), effort.Choose(9, 1),
            [&] { return MeasureAtOnce(clients, calls, [&](unsigned) { peer->Nothing(); }); },
            [&] { return MeasureAtOnce(clients, calls, [&](unsigned client) { rawClients[client].PingPong(); }); });
        rows.push_back({fmt::format("clients: {} at once, per call", clients), "us", comparison,
                        "raw ping-pongs of as many threads"});
    }

    rows.push_back({"clients: memory of a connection", "KiB",
                    PerConnection(few.memory, many.memory, rawFew.memory, rawMany.memory),
                    "the raw server's thread and socket"});
    rows.push_back({"clients: threads of a connection", "",
                    PerConnection(few.threads, many.threads, rawFew.threads, rawMany.threads),
                    "the raw server's thread"});
    return rows;
}

} // namespace Vela::Benchmarks
