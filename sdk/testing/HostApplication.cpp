#include "HostApplication.hpp"

#include <Vela/System/Commons/Runtime/SignalHandler.hpp>

namespace Vela::System::Kiro::Testing
{

using Internal::ApplicationSetupKind;

HostApplication::HostApplication(const String& name, std::function<void(int signal)> signalHandler)
    : ApplicationBase(name, true)
    , handler(std::move(signalHandler))
{
}

HostApplication::~HostApplication() = default;

void HostApplication::SetUp(const String& settingsPath)
{
    Commons::Runtime::SignalHandler::BlockSignals();
    Setup(Commons::Diagnostics::LogLevel::None, settingsPath.c_str());
}

void HostApplication::SetupInternal()
{
    SetSignalHandler(handler);
    SetupBasicComponents(ApplicationSetupKind::Remoting | ApplicationSetupKind::NotificationManager |
                             ApplicationSetupKind::ProcessManager,
                         Internal::ProcessKind::Main);
}

} // namespace Vela::System::Kiro::Testing
