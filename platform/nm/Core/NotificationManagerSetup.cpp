#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Nm/NotificationManager.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>

#include <Core/NotificationCore.hpp>
#include <Core/NotificationLimitsDocument.hpp>

#include <memory>

namespace Vela::System::Nm
{

using Internal::NotificationCore;

void NotificationManagerSetup::Setup(const String& applicationName, bool withBroker, const String& settingsPath)
{
    const auto limits = Internal::NotificationLimitsDocument::Load(settingsPath);
    const auto core = std::make_shared<NotificationCore>(applicationName, limits, withBroker);
    AppDomainSingleton<NotificationManager>::CreateInstance(core);
    try
    {
        core->PublishBroker();
    }
    catch (...)
    {
        AppDomainSingleton<NotificationManager>::DisposeInstance();
        throw;
    }
    NotificationCore::SetCurrent(core);
}

void NotificationManagerSetup::CheckSettings(const String& settingsPath)
{
    static_cast<void>(Internal::NotificationLimitsDocument::Load(settingsPath));
}

void NotificationManagerSetup::StartDispatching()
{
    if (const auto core = NotificationCore::GetCurrent())
    {
        core->StartDispatching();
    }
}

void NotificationManagerSetup::Dispose()
{
    const auto core = NotificationCore::GetCurrent();
    if (core == nullptr)
    {
        return;
    }
    // Closing refuses to run inside a callback; everything stays as it is then.
    core->Close();
    NotificationCore::SetCurrent(nullptr);
    AppDomainSingleton<NotificationManager>::DisposeInstance();
}

} // namespace Vela::System::Nm
