#pragma once

#include <Sm/Data/ComponentExecutionData.hpp>
#include <Sm/Data/ProcessData.hpp>
#include <Sm/ISystemManagerHost.hpp>
#include <Sm/LifecycleSteps.hpp>
#include <Sm/SlowCallWatcher.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <list>
#include <memory>
#include <optional>

namespace Vela::System::Kiro::Internal::Sm::Config
{
class KiroConfiguration;
}

namespace Vela::System::Kiro::Internal::Sm
{

/// Creates the components of all processes and walks them through the lifecycle in start order. It never touches a
/// component itself: each step is a remote call to the process manager of the component's process.
///
/// One walk at a time: the system manager sees to that.
class ComponentsController : private Commons::Diagnostics::Loggable<ComponentsController>
{
public:
    /// @param processTable  the system manager's, filled by the processes controller
    ComponentsController(const ISystemManagerHost& systemManagerHost, const Data::ProcessTable& processTable,
                         SlowCallWatcher& slowCallWatcher);

    /// Fills the tables of libraries and components of each process.
    /// @param singleProcess  all components belong to the main process
    /// @throws InvalidConfigException for the first component whose process or library is unknown
    void SetupConfig(const Config::KiroConfiguration& configuration, bool singleProcess);

    /// What SetupConfig does, and how the order comes about, for tools that only want to know what would happen.
    static void FillTables(const Config::KiroConfiguration& configuration, bool singleProcess,
                           const String& mainProcessName, const Data::ProcessTable& table);
    /// The configured start order goes before the component's own.
    static std::uint32_t ChooseStartOrder(const Data::ComponentData& component, std::uint32_t ownStartOrder);
    /// A component without a category stays out, with a warning.
    static void AddToExecutionList(Data::ExecutionList& list, const std::shared_ptr<Data::ProcessData>& process,
                                   const std::shared_ptr<Data::ComponentData>& component, std::uint32_t startOrder,
                                   bool hasCategory);

    /// Creates all components in the processes that are connected; the first failure ends it.
    void CreateComponents();
    /// Initialises, subscribes, loads and sets up settings and publishes. A required component that fails ends the
    /// phase: what the phase did is undone and the exception goes on. An optional one is removed.
    void SetupComponentsSettings();
    /// Loads and sets up the configuration, with the policy of the settings phase. False when an optional component
    /// failed.
    bool SetupComponentsConfig();
    /// Starts the controller components. False when a required one failed; the others are started all the same.
    bool StartComponents();

    /// The backward phases visit the components that the matching forward phase reached, in reverse order. A failure is
    /// logged and the phase goes on.
    void StopComponents();
    void ResetComponentsConfig();
    void DisposeComponents();
    void PowerDownComponents();
    /// Destroys all components and forgets them.
    /// @throws Exception at the end, with the text of the first failure
    void DestroyComponents();

    /// Stops, resets, disposes and destroys.
    void Dispose();

    void RemoveComponents(const std::list<String>& names);
    /// Disposes, destroys and forgets a component; one that is not there is fine.
    void RemoveComponent(const String& name);

    /// Copies what is known of a component; false when there is none of this name.
    bool TryGetComponentData(const String& name, Data::ComponentExecutionData& result) const;
    [[nodiscard]] const Data::ExecutionList& GetExecutionList() const noexcept;

private:
    using Entry = Data::ComponentExecutionData;

    void CreateComponent(const std::shared_ptr<Data::ComponentData>& component,
                         const std::shared_ptr<Data::ProcessData>& process);

    struct ForwardResult
    {
        bool hasRequiredFailed = false;
        bool hasOptionalFailed = false;
    };

    ForwardResult RunForward(const ForwardPhase& phase, bool (*isEligible)(const Entry&));
    bool StepForward(const ForwardPhase& phase, Entry& entry);
    std::optional<CaughtException> RunBackward(const BackwardPhase& phase);
    std::optional<CaughtException> StepBackward(const BackwardPhase& phase, Entry& entry);
    void CallStep(const LifecycleStep& step, const Entry& entry);

    const ISystemManagerHost& host;
    const Data::ProcessTable& processes;
    SlowCallWatcher& slowCalls;
    Data::ExecutionList executionList;
};

} // namespace Vela::System::Kiro::Internal::Sm
