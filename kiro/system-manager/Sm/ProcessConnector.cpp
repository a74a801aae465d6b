#include <Sm/ProcessConnector.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

std::shared_ptr<Services::Internal::IProcessManagerService>
ConnectToProcess(const String& processName, std::chrono::milliseconds limit, std::span<const int> wakeDescriptors)
{
    return Rsc::ServiceManager::TryGetService(Services::Internal::ProcessManagerServiceProxyFactory::GetInstance(),
                                              Rsc::ServiceProvider::Process(processName), limit, wakeDescriptors);
}

} // namespace Vela::System::Kiro::Internal::Sm
