#pragma once

#include "Harness/Child.hpp"
#include "Harness/Statistics.hpp"
#include "Harness/TemporaryDirectory.hpp"

#include <optional>
#include <string>

namespace Vela::Benchmarks
{

/// What a system consists of.
struct SystemPlan
{
    unsigned childProcesses = 0;
    /// Evenly over the child processes.
    unsigned components = 0;
    /// Whether each process has a component that reports; see the component library.
    bool hasReporters = false;
};

/// Writes the configuration of a system.
/// @param files  over how many included files the components are spread; 0: none is included
void WriteConfiguration(const TemporaryDirectory& directory, const SystemPlan& plan, unsigned files);

/// A running system, started from the built executable in a directory of its own.
class BenchSystem
{
public:
    explicit BenchSystem(const SystemPlan& plan);

    /// Waits until the process manager of every process is connected.
    void AwaitConnected();
    /// Waits until everything is set up.
    void AwaitUp();
    /// Asks it to end in order.
    void Stop() const;
    /// Waits until it has ended.
    void AwaitEnd();

    /// When the main process was started.
    [[nodiscard]] Clock::time_point GetStartTime() const noexcept
    {
        return startTime;
    }

    [[nodiscard]] const Child& GetMainProcess() const noexcept
    {
        return *process;
    }

    /// A line from a reporter.
    struct Report
    {
        std::string component;
        std::string step;
        /// Monotonic clock.
        double microseconds = 0;
        /// Heap in use by its process, in bytes.
        double memory = 0;
    };

    /// The next line; of a system with reporters.
    Report AwaitReport();

private:
    SystemPlan plan;
    TemporaryDirectory directory;
    System::Commons::UniqueFd reports;
    std::string received;
    Clock::time_point startTime;
    std::optional<Child> process;
};

} // namespace Vela::Benchmarks
