#include "RecorderProcess.hpp"

#include <Vela/CaughtException.hpp>

namespace Vela::Testing
{

RecorderProcess::RecorderProcess(std::string processName, const LifecycleCase& wholeSystem)
    : name(std::move(processName))
    , system(wholeSystem)
{
    manager.LoadStaticLibraries();
}

RecorderProcess::~RecorderProcess()
{
    manager.Dispose();
}

RecorderProcess::ProcessManager& RecorderProcess::GetManager() noexcept
{
    return manager;
}

String RecorderProcess::GetName() const
{
    return name;
}

void RecorderProcess::RequestProcessShutdown()
{
    throw InvalidOperationException("Nobody asked process '{0}' to end.", name);
}

void RecorderProcess::ShutdownProcess()
{
    manager.ShutdownProcess();
}

bool RecorderProcess::LoadLibrary(const Text& libraryName, const Text& libraryPath)
{
    return manager.TryLoadLibrary(libraryName.ToString(), libraryPath.ToString());
}

void RecorderProcess::UnloadLibrary(const Text& libraryName)
{
    manager.UnloadLibrary(libraryName.ToString());
}

RecorderProcess::Properties RecorderProcess::CreateComponent(const Text& type, const Text& component,
                                                             const Text& libraryName)
{
    Reach(component, "Create");
    return CallAcrossLibrary(
        [&] { return manager.CreateComponent(type.ToString(), component.ToString(), libraryName.ToString()); });
}

void RecorderProcess::DestroyComponent(const Text& component)
{
    Reach(component, "Destroy");
    manager.DestroyComponent(component.ToString());
}

void RecorderProcess::LoadComponentSettings(const Text& component, const Text& settingsPath)
{
    Reach(component, "LoadSettings");
    CallAcrossLibrary([&] { manager.LoadComponentSettings(component.ToString(), settingsPath.ToString()); });
}

void RecorderProcess::InitializeComponent(const Text& component)
{
    Take(component, "Initialize", &ProcessManager::InitializeComponent);
}

void RecorderProcess::SetupComponentSettings(const Text& component)
{
    Take(component, "SetupSettings", &ProcessManager::SetupComponentSettings);
}

void RecorderProcess::SubscribeComponentServices(const Text& component)
{
    Take(component, "SubscribeServices", &ProcessManager::SubscribeComponentServices);
}

void RecorderProcess::LoadComponentConfig(const Text& component)
{
    Take(component, "LoadConfig", &ProcessManager::LoadComponentConfig);
}

void RecorderProcess::SetupComponentConfig(const Text& component)
{
    Take(component, "SetupConfig", &ProcessManager::SetupComponentConfig);
}

void RecorderProcess::PublishComponentServices(const Text& component)
{
    Take(component, "PublishServices", &ProcessManager::PublishComponentServices);
}

void RecorderProcess::StartComponent(const Text& component)
{
    Take(component, "Start", &ProcessManager::StartComponent);
}

void RecorderProcess::StopComponent(const Text& component)
{
    Take(component, "Stop", &ProcessManager::StopComponent);
}

void RecorderProcess::ResetComponentConfig(const Text& component)
{
    Take(component, "ResetConfig", &ProcessManager::ResetComponentConfig);
}

void RecorderProcess::DisposeComponent(const Text& component)
{
    Take(component, "Dispose", &ProcessManager::DisposeComponent);
}

void RecorderProcess::PowerDownComponent(const Text& component)
{
    Take(component, "PowerDown", &ProcessManager::PowerDownComponent);
}

bool RecorderProcess::SetEnvironmentVariable(const System::Rsc::RscString<128>& variable,
                                             System::Rsc::RscVariant<512> value)
{
    return manager.SetEnvironmentVariable(variable.ToString(), value.ToString());
}

void RecorderProcess::Reach(const Text& component, const std::string& step) const
{
    for (const ComponentCase& declared : system.components)
    {
        const auto fault = declared.faults.find(step);
        if (declared.name == component.ToString() && fault != declared.faults.end() && fault->second == Fault::Lost)
        {
            throw RscException(GetFaultText(declared.name, step));
        }
    }
}

void RecorderProcess::Take(const Text& component, const char* step,
                           void (ProcessManager::*operation)(const String&) const) const
{
    Reach(component, step);
    CallAcrossLibrary([&] { (manager.*operation)(component.ToString()); });
}

} // namespace Vela::Testing
