#include "ProcessManagerModel.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace Vela::Testing
{

namespace
{

/// What is said when a component has taken a step.
const std::map<std::string, const char*> stepMessages{
    {"Initialize", "Initialize of component '{0}' called."},
    {"SubscribeServices", "SubscribeServices of component '{0}' called."},
    {"LoadSettings", "LoadSettings of component '{0}' with path '{1}' called."},
    {"SetupSettings", "SetupSettings of component '{0}' called."},
    {"PublishServices", "PublishServices of component '{0}' called."},
    {"LoadConfig", "LoadConfig of component '{0}' called."},
    {"SetupConfig", "SetupConfig of component '{0}' called."},
    {"Start", "Start of component '{0}' called."},
    {"Stop", "Stop of component '{0}' called."},
    {"ResetConfig", "Reset config of component '{0}' called."},
    {"Dispose", "Dispose of component '{0}' called."},
    {"PowerDown", "PowerDown of component '{0}' called."},
};

/// The way down, step by step: what the log calls it, and what a failure is called in the end.
struct WayDown
{
    const char* activity;
    const char* step;
    const char* failure;
};
const std::vector<WayDown> waysDown{{"stopping component", "Stop", "Stopping"},
                                    {"resetting component", "ResetConfig", "Stopping"},
                                    {"disposing component", "Dispose", "Diposing"},
                                    {"destroying component", "Destroy", "Destroying"}};

} // namespace

ModelFailure GetCurrentFailure()
{
    const auto caught = CaughtException::Current();
    return {caught.GetTier() == CaughtException::Tier::Unspecified, caught.GetText()};
}

std::string DescribeFailure(const ModelFailure& failure)
{
    return failure.isUnspecified ? "unspecified exception" : "exception: " + failure.text;
}

ProcessManagerModel::ProcessManagerModel(Trace& sharedTrace, std::string linePrefix)
    : trace(sharedTrace)
    , prefix(std::move(linePrefix))
{
}

void ProcessManagerModel::LoadLibrary(const std::string& name, const std::string& path)
{
    if (libraries[name].count++ == 0)
    {
        Say("Debug", fmt::format("Shared Library '{0}' with path '{1}' loaded.", name, path));
    }
}

void ProcessManagerModel::UnloadLibrary(const std::string& name)
{
    const auto found = libraries.find(name);
    if (found == libraries.end())
    {
        throw ModelFailure::From(KeyNotFoundException("Could not find library '{0}'.", name));
    }
    if (--found->second.count > 0)
    {
        return;
    }
    const bool isUsed = !found->second.components.empty();
    libraries.erase(found);
    if (isUsed)
    {
        Say("Warning", fmt::format("Shared Library '{0}' is still in use and stays mapped.", name));
    }
    else
    {
        Say("Debug", fmt::format("Shared Library '{0}' unloaded.", name));
    }
}

void ProcessManagerModel::Operate(const ComponentCase& component, const std::string& operation)
{
    static const std::map<std::string, void (ProcessManagerModel::*)(const ComponentCase&)> operations{
        {"Create", &ProcessManagerModel::Create},
        {"Destroy", &ProcessManagerModel::Destroy},
        {"BuildUp", &ProcessManagerModel::BuildUp},
        {"TearDown", &ProcessManagerModel::TearDown}};
    if (const auto found = operations.find(operation); found != operations.end())
    {
        (this->*found->second)(component);
    }
    else
    {
        TakeStep(component, operation);
    }
}

void ProcessManagerModel::Create(const ComponentCase& component)
{
    const std::string type = component.GetType();
    if (component.library.empty() && !component.isKnownType)
    {
        throw ModelFailure::From(
            InvalidOperationException("{0}: Can't create component '{1}' of type {2}, because no registered factory "
                                      "method for this type exists.",
                                      "CreateStaticComponent", component.name, type));
    }
    if (!component.library.empty() && !libraries.contains(component.library))
    {
        throw ModelFailure::From(KeyNotFoundException("Library '{0}' not found.", component.library));
    }
    if (!component.isKnownType)
    {
        throw ModelFailure::From(InvalidOperationException("There is no recorder of type '{0}'.", type));
    }
    Act(component, "Create");
    const bool isNameTaken = components.contains(component.name);
    const bool isTypeTaken =
        std::any_of(components.begin(), components.end(),
                    [&](const auto& other)
                    { return other.second->isSingleton && other.second->isController == component.isController; });
    if (isNameTaken || (component.isSingleton && isTypeTaken))
    {
        Act(component, "Destroy");
        throw isNameTaken ? ModelFailure::From(InvalidOperationException("Component '{}' yet exists", component.name))
                          : ModelFailure::From(InvalidOperationException(
                                "Component type {} is a singleton and might only be instantiated once.",
                                fmt::format("Vela::Testing::SingularRecorder<Vela::Testing::{}>",
                                            component.isController ? "RecordingController" : "Recorder")));
    }
    components[component.name] = &component;
    if (!component.library.empty())
    {
        libraries[component.library].components.insert(component.name);
    }
    Say("Debug", component.library.empty()
                     ? fmt::format("Component '{0}' of type '{1}' from static library created.", component.name, type)
                     : fmt::format("Component '{0}' of type '{1}' (Version {2}) from library '{3} created.",
                                   component.name, type, "1.2.3.4", component.library));
}

void ProcessManagerModel::Destroy(const ComponentCase& component)
{
    if (components.erase(component.name) == 0)
    {
        throw ModelFailure::From(InvalidOperationException("Component '{}' does not exist", component.name));
    }
    for (auto& [name, library] : libraries)
    {
        library.components.erase(component.name);
    }
    Act(component, "Destroy");
    Say("Debug", fmt::format("Component '{0}' destroyed.", component.name));
}

void ProcessManagerModel::TakeStep(const ComponentCase& component, const std::string& step)
{
    if (!components.contains(component.name))
    {
        throw ModelFailure::From(InvalidOperationException("Component '{}' does not exist", component.name));
    }
    if ((step == "Start" || step == "Stop") && !component.isController)
    {
        return;
    }
    Act(component, step);
    Say("Trace", fmt::format(fmt::runtime(stepMessages.at(step)), component.name, component.settingsPath));
}

void ProcessManagerModel::BuildUp(const ComponentCase& component)
{
    const std::vector<std::vector<const char*>> blocks{
        {"Initialize", "SubscribeServices", "LoadSettings", "SetupSettings", "PublishServices"},
        {"LoadConfig", "SetupConfig"},
        {"Start"}};
    Create(component);
    for (std::size_t block = 0; block < blocks.size(); ++block)
    {
        try
        {
            for (const char* step : blocks[block])
            {
                TakeStep(component, step);
            }
        }
        catch (const ModelFailure&)
        {
            Undo(component, block);
            throw;
        }
    }
}

/// After the first block the component is disposed and destroyed, after each further one a step more is taken back.
void ProcessManagerModel::Undo(const ComponentCase& component, std::size_t depth)
{
    std::for_each(waysDown.begin() + 2 - static_cast<std::ptrdiff_t>(depth), waysDown.end(),
                  [&](const WayDown& way) { Attempt(component, way.activity, way.step); });
}

void ProcessManagerModel::TearDown(const ComponentCase& component)
{
    if (!components.contains(component.name))
    {
        throw ModelFailure::From(ArgumentException("Component '{}' does not exists", component.name));
    }
    std::string last;
    for (const WayDown& way : waysDown)
    {
        if (!Attempt(component, way.activity, way.step))
        {
            last = fmt::format("{} of component '{}' failed", way.failure, component.name);
        }
    }
    if (!last.empty())
    {
        throw ModelFailure::From(InvalidOperationException(last));
    }
}

bool ProcessManagerModel::Attempt(const ComponentCase& component, const char* activity, const std::string& step)
{
    try
    {
        Operate(component, step);
        return true;
    }
    catch (const ModelFailure& failure)
    {
        Say("Error", failure.isUnspecified
                         ? fmt::format("Unspecified exception occurs while {} '{}'", activity, component.name)
                         : fmt::format("Exception occurs while {} '{}': {}", activity, component.name, failure.text));
        return false;
    }
}

void ProcessManagerModel::End()
{
    for (const auto& [name, component] : components)
    {
        Act(*component, "Destroy");
    }
    components.clear();
}

void ProcessManagerModel::Act(const ComponentCase& component, const std::string& step)
{
    trace.push_back(fmt::format("{}Info Recorder: {} takes step {}", prefix, component.name, step));
    const auto fault = component.faults.find(step);
    if (fault == component.faults.end() || fault->second == Fault::Lost)
    {
        return;
    }
    const std::string text = GetFaultText(component.name, step);
    switch (fault->second)
    {
    case Fault::Platform:
        throw ModelFailure::From(InvalidOperationException(text));
    case Fault::Standard:
    case Fault::Own:
        throw ModelFailure{false, text};
    default:
        throw ModelFailure{true};
    }
}

void ProcessManagerModel::Say(const char* level, const std::string& message)
{
    trace.push_back(fmt::format("{}{} ProcessManager: {}", prefix, level, message));
}

} // namespace Vela::Testing
