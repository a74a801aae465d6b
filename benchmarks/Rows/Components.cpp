#include "Harness/Processor.hpp"
#include "Harness/RemotePeer.hpp"
#include "Harness/System.hpp"
#include "Rows/Rows.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace Vela::Benchmarks
{

namespace
{

constexpr double microsecondsPerMillisecond = 1000;
constexpr unsigned childProcesses = 4;
/// Create, Initialize, SubscribeServices, LoadSettings, SetupSettings, PublishServices, LoadConfig, SetupConfig, Start.
constexpr unsigned callsUp = 9;
/// Stop, ResetConfig, Dispose, Destroy.
constexpr unsigned callsDown = 4;

/// One life of a system, in microseconds and bytes.
struct Life
{
    double up = 0;
    double down = 0;
    double heap = 0;
};

Life Live(unsigned components)
{
    BenchSystem system({.childProcesses = childProcesses, .components = components, .hasReporters = true});
    std::map<std::string, double> times;
    Life life;
    const auto await = [&](const std::string& component, const std::string& step)
    {
        for (;;)
        {
            const auto report = system.AwaitReport();
            times[report.component + report.step] = report.microseconds;
            // What a process holds when all is set up; "First" and "Last" share theirs.
            life.heap += report.step == "start" && report.component != "First" ? report.memory : 0;
            if (report.component == component && report.step == step)
            {
                return;
            }
        }
    };
    await("Last", "start");
    system.Stop();
    await("First", "destroy");
    system.AwaitEnd();
    life.up = times["Laststart"] - times["Firstcreate"];
    life.down = times["Firstdestroy"] - times["Laststop"];
    return life;
}

/// Systems of several sizes, one life of each per round, and remote calls in between.
class LifeRounds
{
public:
    LifeRounds(Effort effort, const std::vector<unsigned>& counts)
    {
        const RemotingScope remoting;
        const RemotePeer peer;
        const System::Rsc::RscString<512> name(sampleText);
        std::vector<Sampler> samplers{PerCall(effort.Choose(5000, 50), [&] { peer->Name(name); })};
        for (const unsigned count : counts)
        {
            samplers.push_back(
                [this, count]
                {
                    lives[count].push_back(Live(count));
                    return lives[count].back().up;
                });
        }
        calls = SampleInTurns("components", effort.Choose(11, 1), samplers)[0];
    }

    /// A figure of each round.
    /// @param convert  makes it out of the life
    template <typename Convert>
    [[nodiscard]] std::vector<double> Get(unsigned components, const Convert& convert) const
    {
        const auto& all = lives.at(components);
        std::vector<double> figures(all.size() - 1);
        // The first was the warm-up.
        std::transform(all.begin() + 1, all.end(), figures.begin(), convert);
        return figures;
    }

    /// What that many remote calls take, in each round.
    [[nodiscard]] std::vector<double> GetCalls(unsigned count) const
    {
        std::vector<double> times(calls.size());
        std::transform(calls.begin(), calls.end(), times.begin(), [count](double call) { return call * count; });
        return times;
    }

private:
    std::map<unsigned, std::vector<Life>> lives;
    std::vector<double> calls;
};

struct Direction
{
    const char* name;
    double Life::*time;
    unsigned calls;
};

constexpr Direction directions[] = {{"set-up", &Life::up, callsUp}, {"way down", &Life::down, callsDown}};

void AddRows(std::vector<Row>& rows, const LifeRounds& rounds, const std::vector<unsigned>& counts,
             const Direction& direction)
{
    const auto getTimes = [&](unsigned count, double divisor)
    {
        return rounds.Get(count, [&](const Life& life) { return life.*direction.time / divisor; });
    };
    for (const unsigned count : counts)
    {
        // The reporters of the child processes are called, too.
        const unsigned calls = direction.calls * (count + childProcesses);
        auto comparison = Compare(getTimes(count, 1), rounds.GetCalls(calls));
        comparison.measured /= microsecondsPerMillisecond;
        comparison.floor /= microsecondsPerMillisecond;
        rows.push_back({fmt::format("components: {} of {}", direction.name, count), "ms", comparison,
                        fmt::format("{} remote calls for each", direction.calls), 1.3});
    }
    rows.push_back({fmt::format("components: {} of one of {}", direction.name, counts.back()), "us",
                    Compare(getTimes(counts.back(), counts.back() + childProcesses),
                            getTimes(counts.front(), counts.front() + childProcesses)),
                    fmt::format("one of {}", counts.front()), 1.15});
}

} // namespace

std::vector<Row> MeasureComponents(Effort effort)
{
    const PinnedScope pinned;
    const std::vector<unsigned> counts{effort.Choose(100, 4), effort.Choose(1000, 20), effort.Choose(10'000, 100)};
    std::vector<unsigned> sizes = counts;
    sizes.push_back(0);
    const LifeRounds rounds(effort, sizes);

    std::vector<Row> rows;
    for (const Direction& direction : directions)
    {
        AddRows(rows, rounds, counts, direction);
    }
    const double empty = GetMedian(rounds.Get(0, [](const Life& life) { return life.heap; }));
    const auto getHeap = [&](unsigned count)
    {
        return rounds.Get(count, [&](const Life& life) { return (life.heap - empty) / count; });
    };
    rows.push_back({fmt::format("components: heap of one of {}", counts.back()), "bytes",
                    Compare(getHeap(counts.back()), getHeap(counts.front())), fmt::format("one of {}", counts.front()),
                    1.15});
    return rows;
}

} // namespace Vela::Benchmarks
