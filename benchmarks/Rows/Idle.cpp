#include "Harness/ProcessFigures.hpp"
#include "Harness/System.hpp"
#include "Rows/Rows.hpp"

#include <Vela/Exceptions.hpp>

#include <fmt/format.h>

#include <thread>

namespace Vela::Benchmarks
{

namespace
{

/// The watchdog looks at the child processes once a second.
constexpr double watchdogWakeUpsPerMinute = 60;

} // namespace

std::vector<Row> MeasureIdle(Effort effort)
{
    const unsigned childProcesses = effort.Choose(8, 2);
    BenchSystem system({.childProcesses = childProcesses, .components = childProcesses});
    std::vector<Child> bareProcesses;
    for (unsigned i = 0; i < childProcesses; ++i)
    {
        bareProcesses.emplace_back(GetBuiltFile("bin/kiro-bench-bare"), std::vector<std::string>{"idle"});
        bareProcesses.back().AwaitLine("ready");
    }
    system.AwaitUp();

    std::vector<pid_t> processes = GetChildren(system.GetMainProcess().GetId());
    if (processes.size() != childProcesses)
    {
        throw Exception("The main process has {0} children.", processes.size());
    }
    std::vector<double> memory;
    std::vector<double> bareMemory;
    for (unsigned i = 0; i < childProcesses; ++i)
    {
        memory.push_back(static_cast<double>(GetProportionalMemory(processes[i])));
        bareMemory.push_back(static_cast<double>(GetProportionalMemory(bareProcesses[i].GetId())));
    }

    processes.push_back(system.GetMainProcess().GetId());
    const auto countWakeUps = [&]
    {
        double wakeUps = 0;
        for (const pid_t process : processes)
        {
            wakeUps += static_cast<double>(GetWakeUps(process));
        }
        return wakeUps;
    };
    // Until the watch over slow steps, which goes on for a while without one, has gone to sleep for good.
    std::this_thread::sleep_for(std::chrono::seconds(effort.Choose(12, 0)));
    const double seconds = effort.Choose(60, 1);
    const auto start = Clock::now();
    const double before = countWakeUps();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const double wakeUps = countWakeUps() - before;
    const double minutes = GetMicrosecondsSince(start) / 60e6;
    system.Stop();
    system.AwaitEnd();
    return {
        {"idle: memory of a child process", "KiB", Compare(memory, bareMemory), "a bare process, the same libraries"},
        {fmt::format("idle: wake-ups a minute, {} processes", processes.size()), "",
         Compare({wakeUps / minutes}, {watchdogWakeUpsPerMinute}), "the watchdog's own", 1.0}};
}

} // namespace Vela::Benchmarks
