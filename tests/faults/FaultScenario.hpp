#pragma once

#include "FaultExpectation.hpp"

#include <TestSystem.hpp>

#include <memory>
#include <optional>
#include <string>

namespace Vela::Testing
{

/// Runs one cell with a system of real processes, and the next start of the same system.
class FaultScenario
{
public:
    explicit FaultScenario(const FaultCell& cell);

    /// What was not as it must be, with all evidence; empty when everything was.
    std::string Run();

private:
    void WriteDocuments(bool isHealthy) const;
    [[nodiscard]] std::string MakeConnectScript(bool isHealthy) const;
    [[nodiscard]] std::string MakeScript() const;
    /// Whether the component waits at the gate for what is done to it.
    [[nodiscard]] bool IsHeldAtGate() const;

    /// Whether it is a component that begins the shutdown, not a signal.
    [[nodiscard]] bool IsShutdownRequested() const;

    /// Brings the system to the phase; then the fault happens, by itself or here.
    void Reach();
    void BeginBackwardPhase();
    void Inflict();
    void AwaitFirstLook() const;
    void StopAndContinue(pid_t process);
    /// Ends the system unless the fault does.
    void Finish();
    void Check();
    [[nodiscard]] std::string ReadTraceOfComponents() const;
    void CheckNextStart();
    /// Records stay, also those of earlier lives.
    void CheckRecord(const std::string& when);
    void CheckLeftovers(const std::string& when, bool mayLeaveNames);

    void Require(bool isMet, const std::string& what);
    [[nodiscard]] pid_t FindProcess(const std::string& name) const;
    /// Lets the component go on that waits for the FIFO.
    void Open(const std::string& fifo) const;

    const FaultCell cell;
    const FaultExpectation expected;
    const TestSystem system;
    std::optional<StartedProcess> main;
    std::string reachedLine;
    std::string failures;
};

} // namespace Vela::Testing
