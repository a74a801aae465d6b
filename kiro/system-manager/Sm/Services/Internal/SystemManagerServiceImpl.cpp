#include <Sm/Services/Internal/SystemManagerServiceImpl.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/Singleton.hpp>

namespace Vela::System::Kiro::Services::Internal
{

using SystemManager = Singleton<Kiro::Internal::Sm::SystemManager>;

void SystemManagerServiceImpl::Shutdown()
{
    SystemManager::GetInstance().RequestShutdown();
}

void SystemManagerServiceImpl::PowerDown()
{
    SystemManager::GetInstance().PowerDown();
}

void SystemManagerServiceImpl::Restart()
{
    SystemManager::GetInstance().RestartSystem();
}

void SystemManagerServiceImpl::SetEnvironmentVariable(const Name& name, Rsc::RscVariant<512> value)
{
    SystemManager::GetInstance().SetEnvironmentVariable(name.ToString(), value.ToString());
}

std::vector<ISystemManagerService::Name> SystemManagerServiceImpl::GetApplicationNames()
{
    const auto names = SystemManager::GetInstance().GetApplicationNames();
    return {names.begin(), names.end()};
}

bool SystemManagerServiceImpl::ResolveDeprecatedVariableName(const Name& name, Name& currentName)
{
    String current;
    const bool isOld = SystemManager::GetInstance().ResolveDeprecatedVariableName(name.ToString(), current);
    currentName = current;
    return isOld;
}

std::vector<ISystemManagerService::Text> SystemManagerServiceImpl::GetComponentsOfType(const Text& componentType)
{
    const auto names = SystemManager::GetInstance().GetComponentsOfType(componentType.ToString());
    return {names.begin(), names.end()};
}

ISystemManagerService::Text SystemManagerServiceImpl::GetProcessNameOfComponent(const Text& componentName)
{
    return SystemManager::GetInstance().GetProcessNameOfComponent(componentName.ToString());
}

} // namespace Vela::System::Kiro::Services::Internal
