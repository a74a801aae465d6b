#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Api.hpp>

#include <memory>

namespace Vela::System::Kiro::Internal
{

/// How this process was started: arguments, environment, working directory, signals and processor affinity.
/// Taken first thing in main, so that the process can become again what it was.
class VELA_KIRO_API StartState
{
public:
    /// Standard streams that are closed are opened on /dev/null besides.
    StartState(int argc, char** argv);
    StartState(const StartState&) = delete;
    StartState& operator=(const StartState&) = delete;
    ~StartState();

    /// Replaces this process by a fresh run of its executable: same process id, and everything as it was at the start.
    /// Only after everything has been disposed; returns by an exception alone.
    /// @throws Exception when the executable cannot be run
    [[noreturn]] void StartAgain() const;

private:
    struct Data;
    const std::unique_ptr<Data> data;
};

} // namespace Vela::System::Kiro::Internal
