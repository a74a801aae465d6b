#include <Sm/Services/SystemManagerServiceImpl.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/Singleton.hpp>

namespace Vela::System::Kiro::Services
{

using SystemManager = Singleton<Kiro::Internal::Sm::SystemManager>;

void SystemManagerServiceImpl::Shutdown()
{
    SystemManager::GetInstance().RequestShutdown();
}

std::vector<ComponentInfo> SystemManagerServiceImpl::GetComponentInfos()
{
    return SystemManager::GetInstance().GetComponentInfos();
}

} // namespace Vela::System::Kiro::Services
