// The real process manager: any operations on libraries and components in any order.

#include "OperationRun.hpp"
#include "ProcessManagerModel.hpp"
#include "RecorderProcess.hpp"
#include "RecorderStage.hpp"

#include <fmt/format.h>

namespace Vela::Testing
{
namespace
{

using System::Kiro::Internal::Pm::ProcessManager;
using ComponentOperation = std::function<void(ProcessManager&, const ComponentCase&)>;

/// A step that takes the component's name alone.
template <void (ProcessManager::*Step)(const String&) const>
void Take(ProcessManager& manager, const ComponentCase& component)
{
    (manager.*Step)(component.name);
}

const std::map<std::string, ComponentOperation> componentOperations{
    {"Create",
     [](ProcessManager& manager, const ComponentCase& component)
     {
         manager.CreateComponent(component.GetType(), component.name, component.library);
     }},
    {"Destroy",
     [](ProcessManager& manager, const ComponentCase& component)
     {
         manager.DestroyComponent(component.name);
     }},
    {"BuildUp",
     [](ProcessManager& manager, const ComponentCase& component)
     {
         manager.BuildUpComponent(component.name, component.GetType(), component.library, component.settingsPath);
     }},
    {"TearDown",
     [](ProcessManager& manager, const ComponentCase& component)
     {
         manager.TearDownComponent(component.name);
     }},
    {"LoadSettings",
     [](ProcessManager& manager, const ComponentCase& component)
     {
         manager.LoadComponentSettings(component.name, component.settingsPath);
     }},
    {"Initialize", Take<&ProcessManager::InitializeComponent>},
    {"SubscribeServices", Take<&ProcessManager::SubscribeComponentServices>},
    {"SetupSettings", Take<&ProcessManager::SetupComponentSettings>},
    {"PublishServices", Take<&ProcessManager::PublishComponentServices>},
    {"LoadConfig", Take<&ProcessManager::LoadComponentConfig>},
    {"SetupConfig", Take<&ProcessManager::SetupComponentConfig>},
    {"Start", Take<&ProcessManager::StartComponent>},
    {"Stop", Take<&ProcessManager::StopComponent>},
    {"ResetConfig", Take<&ProcessManager::ResetComponentConfig>},
    {"Dispose", Take<&ProcessManager::DisposeComponent>},
    {"PowerDown", Take<&ProcessManager::PowerDownComponent>},
};

/// An operation reads "Load", "Unload", or one of the above with the component behind it.
const ComponentCase* FindComponent(const LifecycleCase& system, const std::string& operation)
{
    const std::string name = operation.substr(operation.find(' ') + 1);
    const auto found = std::find_if(system.components.begin(), system.components.end(),
                                    [&](const ComponentCase& component) { return component.name == name; });
    return found == system.components.end() ? nullptr : &*found;
}

std::string GetVerb(const std::string& operation)
{
    return operation.substr(0, operation.find(' '));
}

LifecycleCase Generate(Random& random)
{
    LifecycleCase system =
        GenerateSystem(random, {.maxProcesses = 0, .maxComponents = 4, .external = 0, .hasLostCalls = false});
    if (random.Chance(15))
    {
        for (ComponentCase& component : system.components)
        {
            component.isSingleton = true;
        }
    }
    std::vector<std::string> verbs;
    for (const auto& [verb, ignored] : componentOperations)
    {
        verbs.push_back(verb);
    }
    system.operations.emplace_back("Load");
    for (std::size_t count = random.Below(20); count > 0 && !system.components.empty(); --count)
    {
        const std::string& name = random.Pick(system.components).name;
        const std::string verb =
            random.Chance(45) ? random.Pick<std::string>({"BuildUp", "BuildUp", "TearDown"}) : random.Pick(verbs);
        system.operations.push_back(random.Chance(12) ? random.Pick<std::string>({"Load", "Unload"})
                                                      : verb + " " + name);
    }
    return system;
}

Trace Predict(const LifecycleCase& system)
{
    Trace trace;
    ProcessManagerModel model(trace, "");
    for (const std::string& operation : system.operations)
    {
        const ComponentCase* component = FindComponent(system, operation);
        const std::string verb = GetVerb(operation);
        RunModelOperation(
            trace, operation,
            [&]
            {
                if (operation == "Load")
                {
                    model.LoadLibrary(LifecycleCase::recordingLibrary, RecorderStage::GetLibraryPath());
                }
                else if (operation == "Unload")
                {
                    model.UnloadLibrary(LifecycleCase::recordingLibrary);
                }
                else if (component != nullptr)
                {
                    const std::map<std::string, void (ProcessManagerModel::*)(const ComponentCase&)> whole{
                        {"Create", &ProcessManagerModel::Create},
                        {"Destroy", &ProcessManagerModel::Destroy},
                        {"BuildUp", &ProcessManagerModel::BuildUp},
                        {"TearDown", &ProcessManagerModel::TearDown}};
                    if (const auto found = whole.find(verb); found != whole.end())
                    {
                        (model.*found->second)(*component);
                    }
                    else
                    {
                        model.TakeStep(*component, verb);
                    }
                }
                return std::string();
            });
    }
    model.End();
    return trace;
}

Trace Observe(RecorderStage& stage, const LifecycleCase& system)
{
    stage.Prepare(system);
    Trace trace;
    {
        RecorderProcess process(LifecycleCase::mainProcess, system);
        ProcessManager& manager = process.GetManager();
        for (const std::string& operation : system.operations)
        {
            const ComponentCase* component = FindComponent(system, operation);
            RunRealOperation(stage, trace, operation,
                             [&]
                             {
                                 if (operation == "Load")
                                 {
                                     manager.LoadLibrary(LifecycleCase::recordingLibrary,
                                                         RecorderStage::GetLibraryPath());
                                 }
                                 else if (operation == "Unload")
                                 {
                                     manager.UnloadLibrary(LifecycleCase::recordingLibrary);
                                 }
                                 else if (component != nullptr)
                                 {
                                     componentOperations.at(GetVerb(operation))(manager, *component);
                                 }
                                 return std::string();
                             });
        }
    }
    stage.TakeLog(trace);
    return trace;
}

} // namespace

TEST(LifecycleOracle, HoldsForTheProcessManager)
{
    RecorderStage stage;
    ExpectNoDifference<LifecycleCase>(
        {.generate = Generate,
         .predict = Predict,
         .observe = [&](const LifecycleCase& system) { return Observe(stage, system); },
         .simplify = Simplify,
         .missing = {"' unloaded.", "Could not find library", "stays mapped", "does not exists", "does not exist",
                     "yet exists", "is a singleton", "Stopping of component", "Diposing of component",
                     "Exception occurs while resetting component", "Unspecified exception occurs while disposing",
                     "Unspecified exception occurs while stopping"}},
        4000);
}

} // namespace Vela::Testing
