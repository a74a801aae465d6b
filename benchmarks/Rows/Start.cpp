#include "Harness/System.hpp"
#include "Rows/Rows.hpp"

#include <fmt/format.h>

namespace Vela::Benchmarks
{

namespace
{

constexpr double microsecondsPerMillisecond = 1000;

double StartSystem(unsigned childProcesses)
{
    // A process without a component is not started.
    BenchSystem system({.childProcesses = childProcesses, .components = childProcesses});
    system.AwaitConnected();
    const double taken = GetMicrosecondsSince(system.GetStartTime());
    system.AwaitUp();
    system.Stop();
    system.AwaitEnd();
    return taken / microsecondsPerMillisecond;
}

double StartBareProcesses(unsigned childProcesses)
{
    const TemporaryDirectory directory;
    const auto start = Clock::now();
    Child process(GetBuiltFile("bin/kiro-bench-bare"), {"main", std::to_string(childProcesses), directory / "socket"});
    process.AwaitLine("connected");
    const double taken = GetMicrosecondsSince(start);
    process.End();
    return taken / microsecondsPerMillisecond;
}

} // namespace

std::vector<Row> MeasureStart(Effort effort)
{
    std::vector<Row> rows;
    for (const unsigned children : {1U, effort.Choose(8, 2), effort.Choose(32, 3)})
    {
        const auto comparison = Compare(
            fmt::format("start of {} children", children), effort.Choose(children == 32 ? 7 : 15, 1),
            [=] { return StartSystem(children); }, [=] { return StartBareProcesses(children); });
        rows.push_back({fmt::format("start: main process, {} children", children), "ms", comparison,
                        "bare processes, the same libraries"});
    }
    return rows;
}

} // namespace Vela::Benchmarks
