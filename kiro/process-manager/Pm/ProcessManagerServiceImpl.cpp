#include <Pm/ProcessManager.hpp>
#include <Pm/ProcessManagerServiceImpl.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Singleton.hpp>

namespace Vela::System::Kiro::Services::Internal
{

using Kiro::Internal::Pm::ProcessManager;

namespace
{

template <typename Operation>
auto Forward(const Operation& operation)
{
    return CallAcrossLibrary([&] { return operation(Singleton<ProcessManager>::GetInstance()); });
}

/// The operations that take a component's name and nothing else.
void ForwardStep(void (ProcessManager::*step)(const String&) const, const IProcessManagerService::Text& componentName)
{
    Forward([&](ProcessManager& processManager) { (processManager.*step)(componentName.ToString()); });
}

} // namespace

void ProcessManagerServiceImpl::ShutdownProcess()
{
    Forward([](ProcessManager& processManager) { processManager.ShutdownProcess(); });
}

bool ProcessManagerServiceImpl::LoadLibrary(const Text& libraryName, const Text& libraryPath)
{
    return Forward([&](ProcessManager& processManager)
                   { return processManager.TryLoadLibrary(libraryName.ToString(), libraryPath.ToString()); });
}

void ProcessManagerServiceImpl::UnloadLibrary(const Text& libraryName)
{
    Forward([&](ProcessManager& processManager) { processManager.UnloadLibrary(libraryName.ToString()); });
}

ComponentProperties ProcessManagerServiceImpl::CreateComponent(const Text& componentType, const Text& componentName,
                                                               const Text& libraryName)
{
    return Forward(
        [&](ProcessManager& processManager) {
            return processManager.CreateComponent(componentType.ToString(), componentName.ToString(),
                                                  libraryName.ToString());
        });
}

void ProcessManagerServiceImpl::DestroyComponent(const Text& componentName)
{
    Forward([&](ProcessManager& processManager) { processManager.DestroyComponent(componentName.ToString()); });
}

void ProcessManagerServiceImpl::LoadComponentSettings(const Text& componentName, const Text& settingsPath)
{
    Forward([&](ProcessManager& processManager)
            { processManager.LoadComponentSettings(componentName.ToString(), settingsPath.ToString()); });
}

void ProcessManagerServiceImpl::InitializeComponent(const Text& componentName)
{
    ForwardStep(&ProcessManager::InitializeComponent, componentName);
}

void ProcessManagerServiceImpl::SetupComponentSettings(const Text& componentName)
{
    ForwardStep(&ProcessManager::SetupComponentSettings, componentName);
}

void ProcessManagerServiceImpl::SubscribeComponentServices(const Text& componentName)
{
    ForwardStep(&ProcessManager::SubscribeComponentServices, componentName);
}

void ProcessManagerServiceImpl::LoadComponentConfig(const Text& componentName)
{
    ForwardStep(&ProcessManager::LoadComponentConfig, componentName);
}

void ProcessManagerServiceImpl::SetupComponentConfig(const Text& componentName)
{
    ForwardStep(&ProcessManager::SetupComponentConfig, componentName);
}

void ProcessManagerServiceImpl::PublishComponentServices(const Text& componentName)
{
    ForwardStep(&ProcessManager::PublishComponentServices, componentName);
}

void ProcessManagerServiceImpl::StartComponent(const Text& componentName)
{
    ForwardStep(&ProcessManager::StartComponent, componentName);
}

void ProcessManagerServiceImpl::StopComponent(const Text& componentName)
{
    ForwardStep(&ProcessManager::StopComponent, componentName);
}

void ProcessManagerServiceImpl::ResetComponentConfig(const Text& componentName)
{
    ForwardStep(&ProcessManager::ResetComponentConfig, componentName);
}

void ProcessManagerServiceImpl::DisposeComponent(const Text& componentName)
{
    ForwardStep(&ProcessManager::DisposeComponent, componentName);
}

void ProcessManagerServiceImpl::PowerDownComponent(const Text& componentName)
{
    ForwardStep(&ProcessManager::PowerDownComponent, componentName);
}

bool ProcessManagerServiceImpl::SetEnvironmentVariable(const Rsc::RscString<128>& name, Rsc::RscVariant<512> value)
{
    return Forward([&](ProcessManager& processManager)
                   { return processManager.SetEnvironmentVariable(name.ToString(), value.ToString()); });
}

} // namespace Vela::System::Kiro::Services::Internal
