#pragma once

#include "Offline/OfflineSystem.hpp"
#include "Output/Json.hpp"

#include <Sm/Data/ComponentExecutionData.hpp>

#include <map>

namespace Vela::Kiroctl
{

/// What would happen if a system were started with its documents, as facts:
///
///     settings, configuration, singleProcess, errors, faultyFiles
///     processes:   name, kind, command, workingDirectory, settings, libraries (name, path), origin
///     components:  name, type, library, process, startOrder, orderFrom, enabled, required, controller, settings,
///                  copyOf, origin, problem; in start order
///     variables:   name, raw, value, kind, origin, overrode (value, origin)
///     values:      name, value, origin, overrode; what the settings say besides
///
/// An origin is a text "file:line", without a line for what nobody wrote.
class PlanBuilder
{
public:
    /// @param mayLoad  whether components may be constructed, in helper processes, to ask for their own start orders
    PlanBuilder(const OfflineSystem& offlineSystem, const LoadRecord& loadRecord, bool mayLoad);

    [[nodiscard]] Json Build();

private:
    using Component = System::Kiro::Internal::Sm::Config::Component;
    using ComponentData = System::Kiro::Internal::Sm::Data::ComponentData;
    using ProcessData = System::Kiro::Internal::Sm::Data::ProcessData;

    void Order();
    [[nodiscard]] Json BuildProcesses() const;
    [[nodiscard]] Json BuildProcess(const ProcessData& process) const;
    [[nodiscard]] Json BuildComponents() const;
    [[nodiscard]] Json BuildComponent(const ProcessData& process, const ComponentData& component) const;
    [[nodiscard]] Json BuildVariables() const;
    [[nodiscard]] Json BuildValues() const;
    [[nodiscard]] String GetCommand(const ProcessData& process) const;

    const OfflineSystem& system;
    const LoadRecord& record;
    const bool mayLoadLibraries;
    System::Kiro::Internal::Sm::Data::ExecutionList executionList;
    /// By name: why a component's place in the order, or the component itself, is in doubt.
    std::map<String, String> problems;
};

/// Builds a plan in a process of its own, so that it leaves nothing behind in the environment of this one.
/// @throws CommandError when that fails
Json BuildPlan(const SystemDocuments& documents, bool mayLoad);

} // namespace Vela::Kiroctl
