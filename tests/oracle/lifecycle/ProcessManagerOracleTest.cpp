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

const std::vector<std::string> verbs{
    "Create",       "Destroy",       "BuildUp",         "TearDown",   "Initialize",  "SubscribeServices",
    "LoadSettings", "SetupSettings", "PublishServices", "LoadConfig", "SetupConfig", "Start",
    "Stop",         "ResetConfig",   "Dispose",         "PowerDown"};

/// Carries out an operation, of the model or of the real process: "Load", "Unload", or a verb and a component.
template <typename Libraries, typename Process>
std::string Operate(Libraries& libraries, Process& process, const LifecycleCase& system, const std::string& operation)
{
    if (operation == "Load")
    {
        libraries.LoadLibrary(LifecycleCase::recordingLibrary, RecorderStage::GetLibraryPath());
    }
    else if (operation == "Unload")
    {
        libraries.UnloadLibrary(LifecycleCase::recordingLibrary);
    }
    for (const ComponentCase& component : system.components)
    {
        if (operation.ends_with(" " + component.name))
        {
            process.Operate(component, operation.substr(0, operation.find(' ')));
        }
    }
    return {};
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
    system.operations.emplace_back("Load");
    for (std::size_t count = random.Below(20); count > 0 && !system.components.empty(); --count)
    {
        std::string operation =
            random.Chance(45) ? random.Pick<std::string>({"BuildUp", "BuildUp", "TearDown"}) : random.Pick(verbs);
        operation += " " + random.Pick(system.components).name;
        system.operations.push_back(random.Chance(12) ? random.Pick<std::string>({"Load", "Unload"}) : operation);
    }
    return system;
}

Trace Predict(const LifecycleCase& system)
{
    Trace trace;
    ProcessManagerModel model(trace, "");
    for (const std::string& operation : system.operations)
    {
        RunModelOperation(trace, operation, [&] { return Operate(model, model, system, operation); });
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
        for (const std::string& operation : system.operations)
        {
            RunRealOperation(stage, trace, operation,
                             [&] { return Operate(process.GetManager(), process, system, operation); });
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
