#include <Sm/HungProcess.hpp>
#include <Sm/SlowCallWatcher.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/System/Kiro/Services/Internal/DiagnosticsServiceProxy.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

void LogThreadStacksOf(const String& process) noexcept
{
    using Services::Internal::DiagnosticsServiceProxyFactory;
    try
    {
        Rsc::ServiceManager::GetService(DiagnosticsServiceProxyFactory::GetInstance(),
                                        Rsc::ServiceProvider::Process(process))
            ->LogThreadStacks();
    }
    catch (...)
    {
        Commons::Diagnostics::Logger::Get(typeid(SlowCallWatcher))
            .Warning("Process '{0}' does not tell where its threads are: {1}", process,
                     CaughtException::Current().GetText());
    }
}

} // namespace Vela::System::Kiro::Internal::Sm
