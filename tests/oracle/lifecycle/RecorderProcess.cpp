#include "RecorderProcess.hpp"

#include <Vela/CaughtException.hpp>

#include <algorithm>

namespace Vela::Testing
{

using System::Kiro::Internal::Pm::ProcessManager;

namespace
{

using Operation = void (*)(ProcessManager& manager, const ComponentCase& component);

/// An operation that takes the component's name alone.
template <auto Member>
void ByName(ProcessManager& manager, const ComponentCase& component)
{
    (manager.*Member)(component.name);
}

template <void (ProcessManager::*Step)(const String&) const>
constexpr Operation stepByName = ByName<Step>;

void Create(ProcessManager& manager, const ComponentCase& component)
{
    manager.CreateComponent(component.GetType(), component.name, component.library);
}

void BuildUp(ProcessManager& manager, const ComponentCase& component)
{
    manager.BuildUpComponent(component.name, component.GetType(), component.library, component.settingsPath);
}

void LoadSettings(ProcessManager& manager, const ComponentCase& component)
{
    manager.LoadComponentSettings(component.name, component.settingsPath);
}

const std::map<std::string, Operation> operations{
    {"Create", Create},
    {"Destroy", ByName<&ProcessManager::DestroyComponent>},
    {"BuildUp", BuildUp},
    {"TearDown", ByName<&ProcessManager::TearDownComponent>},
    {"Initialize", stepByName<&ProcessManager::InitializeComponent>},
    {"SubscribeServices", stepByName<&ProcessManager::SubscribeComponentServices>},
    {"LoadSettings", LoadSettings},
    {"SetupSettings", stepByName<&ProcessManager::SetupComponentSettings>},
    {"PublishServices", stepByName<&ProcessManager::PublishComponentServices>},
    {"LoadConfig", stepByName<&ProcessManager::LoadComponentConfig>},
    {"SetupConfig", stepByName<&ProcessManager::SetupComponentConfig>},
    {"Start", stepByName<&ProcessManager::StartComponent>},
    {"Stop", stepByName<&ProcessManager::StopComponent>},
    {"ResetConfig", stepByName<&ProcessManager::ResetComponentConfig>},
    {"Dispose", stepByName<&ProcessManager::DisposeComponent>},
    {"PowerDown", stepByName<&ProcessManager::PowerDownComponent>},
};

} // namespace

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

ProcessManager& RecorderProcess::GetManager() noexcept
{
    return manager;
}

void RecorderProcess::Operate(const ComponentCase& component, const std::string& operation)
{
    operations.at(operation)(manager, component);
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

void RecorderProcess::LoadComponentSettings(const Text& component, const Text& settingsPath)
{
    Reach(component, "LoadSettings");
    CallAcrossLibrary([&] { manager.LoadComponentSettings(component.ToString(), settingsPath.ToString()); });
}

bool RecorderProcess::SetEnvironmentVariable(const System::Rsc::RscString<128>& variable,
                                             System::Rsc::RscVariant<512> value)
{
    return manager.SetEnvironmentVariable(variable.ToString(), value.ToString());
}

const ComponentCase& RecorderProcess::Reach(const Text& component, const std::string& step) const
{
    const auto declared = std::find_if(system.components.begin(), system.components.end(),
                                       [&](const ComponentCase& one) { return one.name == component.ToString(); });
    if (declared == system.components.end())
    {
        throw InvalidOperationException("The case has no component '{0}'.", component.ToString());
    }
    const auto fault = declared->faults.find(step);
    if (fault != declared->faults.end() && fault->second == Fault::Lost)
    {
        throw RscException(GetFaultText(declared->name, step));
    }
    return *declared;
}

void RecorderProcess::Take(const Text& component, const std::string& step)
{
    const ComponentCase& declared = Reach(component, step);
    CallAcrossLibrary([&] { Operate(declared, step); });
}

} // namespace Vela::Testing
