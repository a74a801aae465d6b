#include <Sm/KiroSecurityNotifications.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Nm/NotificationManager.hpp>

namespace Vela::System::Kiro::Internal::Security
{

namespace
{

String RequireNotificationManager(const char* name)
{
    AppDomainSingleton<Nm::NotificationManager>::GetInstance();
    return name;
}

} // namespace

KiroSecurityNotifications::KiroSecurityNotifications()
    : restarting(RequireNotificationManager("Security.Vela.System.Kiro.SystemRestarting"), "Security Manager",
                 Nm::Severity::Information)
{
    Singleton<KiroSecurityNotifications>::SetInstance(*this);
}

KiroSecurityNotifications::~KiroSecurityNotifications()
{
    Singleton<KiroSecurityNotifications>::DisposeInstance();
    restarting.Dispose();
}

void KiroSecurityNotifications::SendSystemRestartingNotification() const
{
    NmPayload::Security::SecurityNotificationPayload payload("Restarting Tarnex system!");
    payload.SetTimeStamp(Commons::Chrono::DateTime::GetUtcNow());
    restarting.Send(payload);
}

} // namespace Vela::System::Kiro::Internal::Security
