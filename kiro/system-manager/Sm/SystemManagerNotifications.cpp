#include <Sm/SystemManagerNotifications.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/NmPayload/Kiro/SystemStartupPayload.hpp>
#include <Vela/VelaVersion.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

namespace
{

constexpr const char* namePrefix = "Vela.System.Kiro.SystemManager.";
constexpr const char* stateChangedSuffix = "StateChanged";
constexpr const char* startupSuffix = "Startup";

} // namespace

SystemManagerNotifications::SystemManagerNotifications()
    : stateChange(std::make_unique<StateRegistration>(String(namePrefix) + stateChangedSuffix, sender,
                                                      Nm::Severity::Information))
{
}

SystemManagerNotifications::~SystemManagerNotifications()
{
    stateChange->Dispose();
}

void SystemManagerNotifications::SendStateNotification(NmPayload::Kiro::SystemManagerState state, bool hasError,
                                                       bool flag) const
{
    NmPayload::Kiro::SystemManagerStatePayload payload(state, hasError, flag);
    payload.SetTimeStamp(Commons::Chrono::DateTime::GetUtcNow());
    stateChange->Send(payload);
}

void SystemManagerNotifications::SendStartupNotification() const
{
    Nm::NotificationRegistration<NmPayload::Kiro::SystemStartupPayload> startup(String(namePrefix) + startupSuffix,
                                                                                sender, Nm::Severity::Information);
    NmPayload::Kiro::SystemStartupPayload payload(VelaVersion::GetCurrent());
    payload.SetTimeStamp(Commons::Chrono::DateTime::GetUtcNow());
    startup.Send(payload);
    startup.Dispose();
}

} // namespace Vela::System::Kiro::Internal::Sm
