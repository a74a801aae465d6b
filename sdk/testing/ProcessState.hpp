#pragma once

#include <Vela/String.hpp>

#include <csignal>
#include <map>

namespace Vela::System::Kiro::Testing
{

/// What a host changes in the test's process: the environment and the signals that are blocked. Restored with the
/// object, when no other thread is left that might look.
class ProcessState
{
public:
    ProcessState();
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;
    ~ProcessState();

private:
    using Variables = std::map<String, String>;
    [[nodiscard]] static Variables GetVariables();

    const Variables variables;
    sigset_t blockedSignals{};
};

} // namespace Vela::System::Kiro::Testing
