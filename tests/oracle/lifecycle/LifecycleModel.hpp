#pragma once

#include "ProcessManagerModel.hpp"

#include <functional>
#include <set>

namespace Vela::Testing
{

/// The rules of the lifecycle, over tables instead of processes: which component is called when, what the log says of
/// it and what comes out. It does one thing after the other and knows nothing of how the runtime is built.
class LifecycleModel
{
public:
    using Failure = ModelFailure;

    /// @param namesProcesses  each line begins with the process that said it
    LifecycleModel(LifecycleCase wholeSystem, std::string recordingLibraryPath, bool namesProcesses);

    /// The operations of the controllers. They throw a Failure.
    void SetupConfig();
    void LoadLibraries();
    void CreateComponents();
    void SetupComponentsSettings();
    bool SetupComponentsConfig();
    bool StartComponents();
    void StopComponents();
    void ResetComponentsConfig();
    void DisposeComponents();
    void PowerDownComponents();
    void DestroyComponents();
    void RemoveComponent(const std::string& name);
    /// A component is destroyed in its process, of which the controllers learn nothing.
    void LoseComponent(const std::string& name);

    /// All processes end, with the components that are left in them. They do so in any order: the lines are sorted.
    void EndProcesses();

    /// What is known of the components that take part, in their order.
    [[nodiscard]] std::string GetState() const;
    /// The processes that are connected, in their order.
    [[nodiscard]] std::vector<std::string> GetConnectedProcesses() const;
    /// The components that take part, described: "name type library order required enabled process".
    [[nodiscard]] Trace GetComponentInfos() const;

    void Say(const std::string& process, const char* level, const char* speaker, const std::string& message);

    Trace trace;

private:
    struct Component;

    struct Process
    {
        std::string name;
        bool isConnected;
        ProcessManagerModel manager;
        std::set<std::string> neededLibraries = {};
        /// The components that are configured for the process, by name.
        std::map<std::string, Component> configured = {};
    };

    struct Component
    {
        const ComponentCase* declared = nullptr;
        Process* process = nullptr;
        bool isRequired = false;
        bool isController = false;
        std::uint64_t startOrder = 0;
        bool isCreated = false;
        bool isSettingsSetup = false;
        bool isConfigured = false;
        bool isStarted = false;
    };

    /// A forward phase.
    struct Advance
    {
        const char* begins;
        std::vector<const char*> calls;
        const char* ends;
        /// In the messages of a failure: of the step and of the phase.
        const char* failingStep;
        const char* failingPhase;
        bool Component::*mark;
        bool isOnce;
    };

    /// A backward phase.
    struct Retreat
    {
        const char* begins;
        const char* call;
        const char* ends;
        const char* failing;
        bool Component::*mark;
        bool clearsMark;
    };

    static const Advance settings, configuration, start;
    static const Retreat stop, resetConfig, dispose, powerDown, destroy;

    void Create(Component& component);
    /// Answers the names of the optional components that failed, and false when a required one did that does not
    /// matter.
    bool Walk(const Advance& phase, const std::function<bool(const Component&)>& takesPart, const Retreat* undo,
              std::vector<std::string>& failed);
    bool Step(const Advance& phase, Component& component);
    void WalkBack(const Retreat& phase);
    /// Answers what went wrong.
    std::optional<Failure> StepBack(const Retreat& phase, Component& component);
    void Remove(const std::vector<std::string>& names);
    void Report(const char* activity, const Component& component, const Failure& failure);
    void SayOf(const char* level, const char* format, const Component& component);

    /// A call to the process manager of the component's process, which may not arrive there.
    void Call(const Component& component, const std::string& operation);
    void AddProcess(const std::string& name, bool isConnected);

    const LifecycleCase system;
    const std::string libraryPath;
    const bool isProcessNamed;
    std::map<std::string, Process> processes;
    std::vector<Component*> executionList;
};

} // namespace Vela::Testing
