#include "LifecycleModel.hpp"

#include <Vela/Exceptions.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace Vela::Testing
{

namespace
{

constexpr const char* controller = "ComponentsController";
constexpr const char* processesController = "ProcessesController";

bool IsSystem(const ComponentCase& component)
{
    return component.category == "system" || component.category == "service";
}

/// The start order that a component reports: room is kept above the custom ones.
std::uint64_t GetReportedStartOrder(const ComponentCase& component)
{
    return component.category == "custom" && component.startOrder >= 4294966295U ? component.startOrder - 1000
                                                                                 : component.startOrder;
}

void CheckLength(const std::string& text)
{
    if (text.size() >= 512)
    {
        throw ModelFailure::From(ArgumentException::ForParameter("arg", text, "Input string is too long"));
    }
}

} // namespace

const LifecycleModel::Advance LifecycleModel::settings{
    "Setting up component '{0}' in process '{1}'.",
    {"Initialize", "SubscribeServices", "LoadSettings", "SetupSettings", "PublishServices"},
    "Setuped component'{0}' in process '{1}' .",
    "setting up",
    "setting up settings of",
    &Component::isSettingsSetup,
    true};
const LifecycleModel::Advance LifecycleModel::configuration{"Configuring component '{0}' in process '{1}'.",
                                                            {"LoadConfig", "SetupConfig"},
                                                            "Configured component'{0}' in process '{1}' .",
                                                            "setting up config of",
                                                            "setting up config of",
                                                            &Component::isConfigured,
                                                            false};
const LifecycleModel::Advance LifecycleModel::start{"Starting component '{0}' in process '{1}'.",
                                                    {"Start"},
                                                    "Started component'{0}' in process '{1}'.",
                                                    "starting",
                                                    "starting",
                                                    &Component::isStarted,
                                                    true};

const LifecycleModel::Retreat LifecycleModel::stop{"Stopping component '{0}' in process '{1}'.",
                                                   "Stop",
                                                   "Stopped component'{0}' in process '{1}'.",
                                                   "stopping",
                                                   &Component::isStarted,
                                                   true};
const LifecycleModel::Retreat LifecycleModel::resetConfig{"Resetting config of component '{0}' in process '{1}'.",
                                                          "ResetConfig",
                                                          "Reset config of component '{0}' in process '{1}'.",
                                                          "resetting config of",
                                                          &Component::isConfigured,
                                                          true};
const LifecycleModel::Retreat LifecycleModel::dispose{"Disposing component '{0}' in process '{1}'.",
                                                      "Dispose",
                                                      "Disposed component'{0}' in process '{1}'.",
                                                      "disposing",
                                                      &Component::isSettingsSetup,
                                                      true};
const LifecycleModel::Retreat LifecycleModel::powerDown{"PowerDown component '{0}' in process '{1}'.",
                                                        "PowerDown",
                                                        "PowerDown component '{0}' in process '{1}' done.",
                                                        "powerdown",
                                                        &Component::isSettingsSetup,
                                                        false};
const LifecycleModel::Retreat LifecycleModel::destroy{"Destroying component '{0}' in process '{1}'.",
                                                      "Destroy",
                                                      "Destroyed component '{0}' in process '{1}' .",
                                                      "destroying",
                                                      &Component::isCreated,
                                                      true};

LifecycleModel::LifecycleModel(LifecycleCase wholeSystem, std::string recordingLibraryPath, bool namesProcesses)
    : system(std::move(wholeSystem))
    , libraryPath(std::move(recordingLibraryPath))
    , isProcessNamed(namesProcesses)
{
    AddProcess(LifecycleCase::mainProcess, true);
    for (const ProcessCase& process : system.processes)
    {
        AddProcess(process.name, process.isConnected);
    }
}

void LifecycleModel::AddProcess(const std::string& name, bool isConnected)
{
    processes.try_emplace(name, Process{name, isConnected, {trace, isProcessNamed ? name + " " : ""}});
}

void LifecycleModel::SetupConfig()
{
    Say(LifecycleCase::mainProcess, "Debug", controller, "Parse component configuration.");
    std::map<std::string, const ComponentCase*> byName;
    for (const ComponentCase& component : system.components)
    {
        byName[component.name] = &component;
    }
    for (const auto& [name, component] : byName)
    {
        const bool isInMain = component->process.empty() || system.isSingleProcess;
        const auto process = processes.find(isInMain ? LifecycleCase::mainProcess : component->process);
        if (process == processes.end())
        {
            throw ModelFailure::From(InvalidConfigException(
                "Component '{0}' has an invalid configuration: Process '{1}' is unknown.", name, component->process));
        }
        if (!process->second.isConnected)
        {
            Say(LifecycleCase::mainProcess, "Info", controller,
                fmt::format("Component '{}' is not created: its process '{}' is external.", name, process->first));
        }
        if (!component->library.empty())
        {
            if (component->library != LifecycleCase::recordingLibrary)
            {
                throw ModelFailure::From(
                    InvalidConfigException("Component '{0}' has an invalid configuration: Library '{1}' is unknown.",
                                           name, component->library));
            }
            process->second.neededLibraries.insert(component->library);
        }
        process->second.configured.insert(
            {name, Component{.declared = component, .process = &process->second, .isRequired = component->isRequired}});
    }
}

void LifecycleModel::LoadLibraries()
{
    for (auto& [name, process] : processes)
    {
        for (const std::string& library : process.neededLibraries)
        {
            if (!process.isConnected)
            {
                continue;
            }
            process.manager.LoadLibrary(library, libraryPath);
            Say(LifecycleCase::mainProcess, "Info", processesController,
                fmt::format("Library '{0}' in process '{1}' loaded.", library, name));
        }
    }
}

void LifecycleModel::CreateComponents()
{
    for (auto& [processName, process] : processes)
    {
        if (process.isConnected)
        {
            for (auto& [name, component] : process.configured)
            {
                Create(component);
            }
        }
    }
}

void LifecycleModel::Create(Component& component)
{
    const ComponentCase& declared = *component.declared;
    SayOf("Debug", "Creating component '{0}' in process '{1}'.", component);
    try
    {
        Call(component, "Create");
    }
    catch (const Failure&)
    {
        Say(LifecycleCase::mainProcess, "Error", controller,
            fmt::format("Component '{0}' of type '{1}' from library '{2}' cannot be created in process '{3}'.",
                        declared.name, declared.GetType(), declared.library, component.process->name));
        throw;
    }
    SayOf("Info", "Component '{0}' in process '{1}' created.", component);
    const bool isFromLibrary = !declared.library.empty();
    component.isController = isFromLibrary && declared.isController;
    component.isCreated = true;
    component.isRequired = component.isRequired || (isFromLibrary && IsSystem(declared));
    component.startOrder = GetReportedStartOrder(declared);
    if (declared.configuredStartOrder)
    {
        Say(LifecycleCase::mainProcess, "Debug", controller,
            fmt::format(
                "Start order of Component '{0}' was overwritten by configuration. (Original: {1} Configured:{2})",
                declared.name, component.startOrder, *declared.configuredStartOrder));
        component.startOrder = static_cast<std::uint64_t>(*declared.configuredStartOrder);
    }
    if (declared.category == "none")
    {
        SayOf("Warning", "Component '{0}' in process '{1}' ignored for execution: Component category is 'None'.",
              component);
        return;
    }
    component.isSettingsSetup = component.isConfigured = component.isStarted = false;
    const auto next = std::find_if(executionList.begin(), executionList.end(),
                                   [&](const Component* other) { return other->startOrder > component.startOrder; });
    executionList.insert(next, &component);
}

void LifecycleModel::SetupComponentsSettings()
{
    std::vector<std::string> failed;
    Walk(
        settings, [](const Component&) { return true; }, &dispose, failed);
    Remove(failed);
}

bool LifecycleModel::SetupComponentsConfig()
{
    std::vector<std::string> failed;
    Walk(
        configuration, [](const Component&) { return true; }, &resetConfig, failed);
    Remove(failed);
    return failed.empty();
}

bool LifecycleModel::StartComponents()
{
    std::vector<std::string> failed;
    const bool isSuccess = Walk(
        start, [](const Component& component) { return component.isSettingsSetup && component.isController; }, nullptr,
        failed);
    Remove(failed);
    return isSuccess;
}

bool LifecycleModel::Walk(const Advance& phase, const std::function<bool(const Component&)>& takesPart,
                          const Retreat* undo, std::vector<std::string>& failed)
{
    bool isSuccess = true;
    std::vector<Component*> visited;
    for (Component* component : executionList)
    {
        if (!component->declared->isEnabled || !takesPart(*component))
        {
            continue;
        }
        visited.push_back(component);
        try
        {
            if (!Step(phase, *component))
            {
                failed.push_back(component->declared->name);
            }
        }
        catch (const Failure& failure)
        {
            Report(phase.failingPhase, *component, failure);
            isSuccess = false;
            if (undo != nullptr)
            {
                std::for_each(visited.rbegin(), visited.rend(), [&](Component* earlier) { StepBack(*undo, *earlier); });
                throw;
            }
        }
    }
    return isSuccess;
}

bool LifecycleModel::Step(const Advance& phase, Component& component)
{
    if (phase.isOnce && component.*phase.mark)
    {
        return true;
    }
    SayOf("Debug", phase.begins, component);
    component.*phase.mark = true;
    try
    {
        for (const char* call : phase.calls)
        {
            Call(component, call);
        }
    }
    catch (const Failure& failure)
    {
        Report(phase.failingStep, component, failure);
        if (component.isRequired)
        {
            throw;
        }
        return false;
    }
    SayOf("Debug", phase.ends, component);
    return true;
}

void LifecycleModel::StopComponents()
{
    WalkBack(stop);
}

void LifecycleModel::ResetComponentsConfig()
{
    WalkBack(resetConfig);
}

void LifecycleModel::DisposeComponents()
{
    WalkBack(dispose);
}

void LifecycleModel::PowerDownComponents()
{
    WalkBack(powerDown);
}

void LifecycleModel::WalkBack(const Retreat& phase)
{
    std::for_each(executionList.rbegin(), executionList.rend(),
                  [&](Component* component) { StepBack(phase, *component); });
}

void LifecycleModel::DestroyComponents()
{
    std::optional<Failure> first;
    std::for_each(executionList.rbegin(), executionList.rend(),
                  [&](Component* component)
                  {
                      const auto failure = StepBack(destroy, *component);
                      first = first ? first : failure;
                  });
    executionList.clear();
    if (first)
    {
        throw Failure(*first);
    }
}

std::optional<LifecycleModel::Failure> LifecycleModel::StepBack(const Retreat& phase, Component& component)
{
    if (!(component.*phase.mark))
    {
        return std::nullopt;
    }
    std::optional<Failure> caught;
    SayOf("Debug", phase.begins, component);
    try
    {
        Call(component, phase.call);
        SayOf("Debug", phase.ends, component);
    }
    catch (const Failure& failure)
    {
        Report(phase.failing, component, failure);
        caught = failure;
    }
    component.*phase.mark = component.*phase.mark && !phase.clearsMark;
    return caught;
}

void LifecycleModel::Remove(const std::vector<std::string>& names)
{
    std::for_each(names.begin(), names.end(), [this](const std::string& name) { RemoveComponent(name); });
}

void LifecycleModel::RemoveComponent(const std::string& name)
{
    Say(LifecycleCase::mainProcess, "Error", controller,
        fmt::format("Component '{0}' will be disposed and removed.", name));
    const auto found = std::find_if(executionList.begin(), executionList.end(),
                                    [&](const Component* component) { return component->declared->name == name; });
    if (found != executionList.end())
    {
        StepBack(dispose, **found);
        StepBack(destroy, **found);
        executionList.erase(found);
    }
}

void LifecycleModel::LoseComponent(const std::string& name)
{
    for (auto& [processName, process] : processes)
    {
        const auto found = process.configured.find(name);
        if (found != process.configured.end() && process.isConnected)
        {
            Call(found->second, "Destroy");
        }
    }
}

void LifecycleModel::EndProcesses()
{
    const auto before = static_cast<std::ptrdiff_t>(trace.size());
    for (auto& [name, process] : processes)
    {
        process.manager.End();
    }
    std::sort(trace.begin() + before, trace.end());
}

void LifecycleModel::Call(const Component& component, const std::string& operation)
{
    const ComponentCase& declared = *component.declared;
    CheckLength(declared.name);
    if (operation == "LoadSettings")
    {
        CheckLength(declared.settingsPath);
    }
    const auto fault = declared.faults.find(operation);
    if (fault != declared.faults.end() && fault->second == Fault::Lost)
    {
        throw ModelFailure::From(RscException(GetFaultText(declared.name, operation)));
    }
    component.process->manager.Operate(declared, operation);
}

void LifecycleModel::Report(const char* activity, const Component& component, const Failure& failure)
{
    const std::string name = component.declared->name;
    Say(LifecycleCase::mainProcess, "Error", controller,
        failure.isUnspecified
            ? fmt::format("Unspecified exception occurs while {0} component '{1}'", activity, name)
            : fmt::format("Exception occurs while {0} component '{1}': {2}", activity, name, failure.text));
}

void LifecycleModel::SayOf(const char* level, const char* format, const Component& component)
{
    Say(LifecycleCase::mainProcess, level, controller,
        fmt::format(fmt::runtime(format), component.declared->name, component.process->name));
}

void LifecycleModel::Say(const std::string& process, const char* level, const char* speaker, const std::string& message)
{
    trace.push_back(fmt::format("{}{} {}: {}", isProcessNamed ? process + " " : "", level, speaker, message));
}

std::string LifecycleModel::GetState() const
{
    std::string text;
    for (const Component* component : executionList)
    {
        text += fmt::format(" {}:{}{}{}", component->declared->name, component->isSettingsSetup ? "s" : "",
                            component->isConfigured ? "c" : "", component->isStarted ? "r" : "");
    }
    return text;
}

std::vector<std::string> LifecycleModel::GetConnectedProcesses() const
{
    std::vector<std::string> names;
    for (const auto& [name, process] : processes)
    {
        if (process.isConnected)
        {
            names.push_back(name);
        }
    }
    return names;
}

Trace LifecycleModel::GetComponentInfos() const
{
    Trace infos;
    for (const Component* component : executionList)
    {
        const ComponentCase& declared = *component->declared;
        infos.push_back(fmt::format("{} {} {} {} {} {} {}", declared.name, declared.GetType(), declared.library,
                                    component->startOrder, component->isRequired, declared.isEnabled,
                                    component->process->name));
    }
    return infos;
}

} // namespace Vela::Testing
