#include "SystemModel.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace Vela::Testing
{

namespace
{

constexpr const char* mainProcess = LifecycleCase::mainProcess;

/// The processes that are left of a configuration: those without components are dropped unless they are external, and a
/// single process stands for all.
LifecycleCase WithRealProcesses(LifecycleCase system)
{
    const auto isUnused = [&](const ProcessCase& process)
    {
        return process.isConnected &&
               std::none_of(system.components.begin(), system.components.end(),
                            [&](const ComponentCase& component) { return component.process == process.name; });
    };
    std::erase_if(system.processes,
                  [&](const ProcessCase& process) { return system.isSingleProcess || isUnused(process); });
    return system;
}

} // namespace

std::string DescribeSetup(const std::optional<ModelFailure>& failure)
{
    return failure ? "Set-up ends by " + DescribeFailure(*failure) : "The system is up";
}

SystemModel::SystemModel(const LifecycleCase& system, const Surroundings& surroundings)
    : lifecycle(WithRealProcesses(system), surroundings.libraryPath, surroundings.namesProcesses)
    , configPath(surroundings.configPath)
{
}

std::optional<ModelFailure> SystemModel::Setup()
{
    try
    {
        notifications.emplace_back("Startup");
        Announce(0, false);
        lifecycle.Say(mainProcess, "Info", "SystemManager", "VELA_PATH_PROJECT_ZORBE_DIR environment variable not set");
        SetupSettings();
        Announce(1, false);
        bool hasError = !lifecycle.SetupComponentsConfig();
        if (hasError)
        {
            Announce(1, true);
        }
        Announce(2, hasError);
        if (!lifecycle.StartComponents())
        {
            hasError = true;
            Announce(3, true);
        }
        Announce(3, hasError);
    }
    catch (const ModelFailure& failure)
    {
        return failure;
    }
    return std::nullopt;
}

void SystemModel::SetupSettings()
{
    lifecycle.Say(mainProcess, "Debug", "SystemManager", "Loading configuration from: " + configPath);
    lifecycle.SetupConfig();
    for (const std::string& process : lifecycle.GetConnectedProcesses())
    {
        lifecycle.Say(mainProcess, "Info", "ProcessesController",
                      fmt::format("Process '{0}' started successfully.", process));
    }
    lifecycle.LoadLibraries();
    lifecycle.CreateComponents();
    lifecycle.SetupComponentsSettings();
}

void SystemModel::Dispose()
{
    lifecycle.StopComponents();
    lifecycle.ResetComponentsConfig();
    lifecycle.DisposeComponents();
    lifecycle.DestroyComponents();
}

void SystemModel::Announce(int state, bool hasError)
{
    notifications.push_back(fmt::format("State {} {}", state, hasError));
}

} // namespace Vela::Testing
