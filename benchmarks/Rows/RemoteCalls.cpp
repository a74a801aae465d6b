#include "Harness/Processor.hpp"
#include "Harness/RawPingPong.hpp"
#include "Harness/RemotePeer.hpp"
#include "Rows/Rows.hpp"

#include <Vela/System/Rsc/ServiceManager.hpp>

#include <fmt/format.h>

#include <mutex>
#include <numeric>

namespace Vela::Benchmarks
{

using System::Rsc::RscString;

namespace
{

/// The remote calls in one placement of the two processes.
std::vector<Row> MeasurePlacement(Effort effort, const std::string& placement, std::optional<double> aim)
{
    const RemotingScope remoting;
    const RemotePeer peer;
    const RawServer server(remoting.GetDirectory() / "raw");
    RawClient rawEmpty(server.GetPath(), emptyRequestSize);
    RawClient rawStrings(server.GetPath(), stringsRequestSize);
    const RscString<512> text(sampleText);

    const unsigned calls = effort.Choose(2000, 20);
    const auto samples = SampleInTurns(
        "remote calls, " + placement, effort.Choose(25, 1),
        {PerCall(calls, [&] { peer->Nothing(); }), PerCall(calls, [&] { rawEmpty.PingPong(); }),
         PerCall(calls, [&] { peer->Strings(text, text); }), PerCall(calls, [&] { rawStrings.PingPong(); })});
    const std::string floor = "raw ping-pong of the same bytes, " + placement;
    return {{"rpc: without arguments, " + placement, "us", Compare(samples[0], samples[1]), floor, aim},
            {"rpc: two texts to, one back, " + placement, "us", Compare(samples[2], samples[3]), floor, aim}};
}

Row MeasureLocalCall(Effort effort)
{
    const RemotingScope remoting;
    BenchService service;
    System::Rsc::RscServiceFactory<IBenchService> factory(service);
    System::Rsc::ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
    const auto proxy = FindBenchService("Bench");
    std::mutex mutex;
    IBenchService* volatile implementation = &service;

    const unsigned calls = effort.Choose(100'000, 100);
    const auto comparison =
        Compare("calls inside a process", effort.Choose(15, 1), PerCall(calls, [&] { proxy->Nothing(); }),
                PerCall(calls,
                        [&]
                        {
                            const std::lock_guard lock(mutex);
                            implementation->Nothing();
                        }));
    System::Rsc::ServiceManager::UnpublishService({}, factory.GetInterfaceName());
    return {"rpc: inside a process", "us", comparison, "a virtual call under a free lock"};
}

} // namespace

std::vector<Row> MeasureRemoteCalls(Effort effort)
{
    std::vector<Row> rows;
    {
        const PinnedScope pinned;
        rows = MeasurePlacement(effort, "one processor", 1.2);
        rows.push_back(MeasureLocalCall(effort));
    }
    const auto freely = MeasurePlacement(effort, "free", {});
    rows.insert(rows.end(), freely.begin(), freely.end());
    return rows;
}

std::string MeasureRemoteCallLine(Effort effort)
{
    const PinnedScope pinned;
    const RemotingScope remoting;
    const RemotePeer peer;
    const auto call = PerCall(1, [&] { peer->Nothing(); });
    const unsigned count = effort.Choose(100'000, 100);
    for (unsigned i = 0; i < count / 10; ++i)
    {
        call();
    }
    std::vector<double> samples(count);
    std::generate(samples.begin(), samples.end(), call);
    const double mean = std::accumulate(samples.begin(), samples.end(), 0.0) / count;
    return fmt::format("{:.2f} {:.2f} {:.2f} {:.0f}", GetMedian(samples), GetPercentile(samples, 0.99), mean,
                       1e6 / mean);
}

} // namespace Vela::Benchmarks
