#pragma once

#include "../Output/Json.hpp"
#include "RunningSystem.hpp"

namespace Vela::Kiroctl
{

/// The services of a system, and who uses them.
struct ServiceList
{
    /// Each has
    ///
    ///     name, interface, process, provider, component, isPublished, users (process, component)
    ///
    /// The provider is the component by whose name it is found, empty for a service of the process; the component is
    /// the one that has published it, empty when none did. One that is looked up and not published now, or by a process
    /// that was not asked, has no interface.
    Json services;
    /// The processes that were asked and did not answer.
    std::vector<String> silentProcesses;

    /// To be called when the rest has been shown.
    /// @throws CommandError (Unreachable) when a process did not answer
    void CheckComplete() const;
};

/// @throws CommandError (Unreachable) when the main process does not answer
ServiceList ListServices(const RunningSystem& system);

} // namespace Vela::Kiroctl
