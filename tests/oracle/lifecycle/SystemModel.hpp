#pragma once

#include "LifecycleModel.hpp"

namespace Vela::Testing
{

/// The rules by which the whole system comes up and goes down.
class SystemModel
{
public:
    /// What decides about a line besides the case.
    struct Surroundings
    {
        std::string configPath;
        std::string libraryPath;
        bool namesProcesses;
    };

    SystemModel(const LifecycleCase& system, const Surroundings& surroundings);

    /// Answers what went wrong; empty when the system is up.
    std::optional<ModelFailure> Setup();
    void Dispose();

    LifecycleModel lifecycle;
    /// What the system manager announces: "Startup", or "State <number> <has error>".
    Trace notifications;

private:
    void Announce(int state, bool hasError);
    void SetupSettings();

    const std::string configPath;
};

/// What became of a set-up.
std::string DescribeSetup(const std::optional<ModelFailure>& failure);

} // namespace Vela::Testing
