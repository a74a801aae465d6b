// The controllers over real process managers, in one process: any operations in any order.

#include "LifecycleModel.hpp"
#include "OperationRun.hpp"
#include "RecorderProcess.hpp"
#include "RecorderStage.hpp"

#include <Config/KiroConfiguration.hpp>
#include <Settings/ProcessSettings.hpp>
#include <Sm/ComponentsController.hpp>
#include <Sm/ProcessesController.hpp>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace Vela::Testing
{
namespace
{

using namespace System::Kiro::Internal;

const std::vector<std::string> wayUpAndDown{"LoadLibraries", "Create", "Settings", "Config",  "Start",
                                            "PowerDown",     "Stop",   "Reset",    "Dispose", "Destroy"};

/// An operation that begins so destroys a component without the controllers' knowledge; every other one that is not
/// known removes the component of that name.
const std::string loses = "lose ";

/// An operation by its name, of the model and of the real controllers alike.
template <typename Controllers>
std::string Operate(Controllers& controllers, const std::string& operation)
{
    static const std::map<std::string, void (Controllers::*)()> actions{
        {"LoadLibraries", &Controllers::LoadLibraries},
        {"Create", &Controllers::CreateComponents},
        {"Settings", &Controllers::SetupComponentsSettings},
        {"PowerDown", &Controllers::PowerDownComponents},
        {"Stop", &Controllers::StopComponents},
        {"Reset", &Controllers::ResetComponentsConfig},
        {"Dispose", &Controllers::DisposeComponents},
        {"Destroy", &Controllers::DestroyComponents},
    };
    static const std::map<std::string, bool (Controllers::*)()> questions{
        {"Config", &Controllers::SetupComponentsConfig},
        {"Start", &Controllers::StartComponents},
    };
    if (const auto found = questions.find(operation); found != questions.end())
    {
        return (controllers.*found->second)() ? "true" : "false";
    }
    if (const auto found = actions.find(operation); found != actions.end())
    {
        (controllers.*found->second)();
    }
    else if (operation.starts_with(loses))
    {
        controllers.LoseComponent(operation.substr(loses.size()));
    }
    else
    {
        controllers.RemoveComponent(operation);
    }
    return {};
}

LifecycleCase Generate(Random& random)
{
    LifecycleCase system = GenerateSystem(
        random, {.maxProcesses = 3, .maxComponents = 7, .external = 15, .hasLostCalls = random.Chance(30)});
    system.operations = wayUpAndDown;
    if (!random.Chance(30))
    {
        std::erase(system.operations, "PowerDown");
    }
    // Some take another way: operations twice, too late, left out, components removed by hand.
    std::vector<std::string> detours = wayUpAndDown;
    for (const ComponentCase& component : system.components)
    {
        detours.push_back(component.name);
        detours.push_back(loses + component.name);
    }
    detours.emplace_back("nobody");
    for (std::size_t count = random.Chance(40) ? 1 + random.Below(5) : 0; count > 0; --count)
    {
        const auto place =
            system.operations.begin() + static_cast<std::ptrdiff_t>(random.Below(system.operations.size()));
        if (random.Chance(70))
        {
            system.operations.insert(place, random.Pick(detours));
        }
        else
        {
            system.operations.erase(place);
        }
    }
    // What is lost stays lost: two entries for one component tell nothing.
    const auto loss = std::find_if(system.operations.begin(), system.operations.end(),
                                   [](const std::string& operation) { return operation.starts_with(loses); });
    system.operations.erase(std::remove(loss, system.operations.end(), "Create"), system.operations.end());
    return system;
}

Trace Predict(const LifecycleCase& system)
{
    LifecycleModel model(system, RecorderStage::GetLibraryPath(), false);
    const auto run = [&](const std::string& operation, const auto& action)
    {
        RunModelOperation(model.trace, operation, action);
        model.trace.push_back("State:" + model.GetState());
    };
    run("SetupConfig", [&] { return model.SetupConfig(), ""; });
    for (const std::string& operation : system.operations)
    {
        run(operation, [&] { return Operate(model, operation); });
    }
    model.EndProcesses();
    return model.trace;
}

/// The controllers, and in their process table real process managers.
class RealControllers : public Sm::ComponentsController
{
public:
    RealControllers(RecorderHost& host, const LifecycleCase& system)
        : ComponentsController(host, processes, slowCalls)
        , processesController(host, processes, settings, slowCalls)
    {
        AddProcess(LifecycleCase::mainProcess, true, system);
        for (const ProcessCase& process : system.processes)
        {
            AddProcess(process.name, process.isConnected, system);
        }
        configuration.libraries.AddItem(
            Sm::Config::Library(LifecycleCase::recordingLibrary, RecorderStage::GetLibraryPath()));
        for (const ComponentCase& declared : system.components)
        {
            Sm::Config::Component component(declared.name, declared.GetType(), declared.library,
                                            Sm::Config::Settings(declared.settingsPath));
            component.process = declared.process;
            component.isRequired = declared.isRequired;
            component.isEnabled = declared.isEnabled;
            component.hasStartOrder = declared.configuredStartOrder.has_value();
            component.startOrder = declared.configuredStartOrder.value_or(-1);
            configuration.components.AddItem(component);
        }
    }

    void SetupConfig(bool isSingleProcess)
    {
        ComponentsController::SetupConfig(configuration, isSingleProcess);
    }

    void LoadLibraries()
    {
        processesController.LoadLibraries();
    }

    void LoseComponent(const std::string& name)
    {
        for (const auto& [processName, process] : processes)
        {
            if (process->components.contains(name) && process->processManagerService != nullptr)
            {
                process->processManagerService->DestroyComponent(name);
            }
        }
    }

    [[nodiscard]] std::string GetState() const
    {
        std::string text;
        for (const auto& [startOrder, entry] : GetExecutionList())
        {
            text += fmt::format(" {}:{}{}{}", entry.component->name, entry.isSettingsSetup ? "s" : "",
                                entry.isConfigured ? "c" : "", entry.isStarted ? "r" : "");
        }
        return text;
    }

private:
    void AddProcess(const std::string& name, bool isConnected, const LifecycleCase& system)
    {
        auto process = std::make_shared<Sm::Data::ProcessData>();
        process->name = name;
        process->isExternal = !isConnected;
        if (isConnected)
        {
            process->processManagerService = std::make_shared<RecorderProcess>(name, system);
        }
        processes[name] = std::move(process);
    }

    Sm::Data::ProcessTable processes;
    Sm::SlowCallWatcher slowCalls{std::chrono::milliseconds(0)};
    Settings::ProcessSettings settings;
    Sm::ProcessesController processesController;
    Sm::Config::KiroConfiguration configuration;
};

Trace Observe(RecorderStage& stage, const LifecycleCase& system)
{
    stage.Prepare(system);
    Trace trace;
    RecorderHost host;
    {
        RealControllers controllers(host, system);
        const auto run = [&](const std::string& operation, const auto& action)
        {
            RunRealOperation(stage, trace, operation, action);
            trace.push_back("State:" + controllers.GetState());
        };
        run("SetupConfig", [&] { return controllers.SetupConfig(system.isSingleProcess), ""; });
        for (const std::string& operation : system.operations)
        {
            run(operation, [&] { return Operate(controllers, operation); });
        }
    }
    Trace ends;
    stage.TakeLog(ends);
    std::sort(ends.begin(), ends.end());
    Append(trace, ends);
    return trace;
}

} // namespace

TEST(LifecycleOracle, HoldsForTheControllers)
{
    RecorderStage stage;
    ExpectNoDifference<LifecycleCase>({.generate = Generate,
                                       .predict = Predict,
                                       .observe = [&](const LifecycleCase& system) { return Observe(stage, system); },
                                       .simplify = Simplify,
                                       .missing = {"Process 'Nowhere' is unknown",
                                                   "Library 'Missing' is unknown",
                                                   "' is external",
                                                   "ignored for execution",
                                                   "was overwritten by configuration",
                                                   "from static library created",
                                                   "no registered factory method",
                                                   "There is no recorder",
                                                   "not found",
                                                   "yet exists",
                                                   "is a singleton",
                                                   "does not exist",
                                                   "Input string is too long",
                                                   "Create: exception",
                                                   "Create: unspecified exception",
                                                   "Settings: exception",
                                                   "Settings: unspecified exception",
                                                   "Config: exception",
                                                   "Config: unspecified exception",
                                                   "Config: false",
                                                   "Start: false",
                                                   "Destroy: exception",
                                                   "will be disposed and removed",
                                                   "Exception occurs while powerdown",
                                                   "Unspecified exception occurs while stopping",
                                                   "Unspecified exception occurs while resetting",
                                                   "Unspecified exception occurs while disposing"}},
                                      10000);
}

} // namespace Vela::Testing
