#pragma once

#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/NmPayload/Kiro/SystemManagerState.hpp>
#include <Vela/System/NmPayload/Kiro/SystemManagerStatePayload.hpp>

#include <memory>

namespace Vela::System::Kiro::Internal::Sm
{

/// Announces how far the system has come.
class SystemManagerNotifications
{
public:
    SystemManagerNotifications();
    SystemManagerNotifications(const SystemManagerNotifications&) = delete;
    SystemManagerNotifications& operator=(const SystemManagerNotifications&) = delete;
    ~SystemManagerNotifications();

    void SendStateNotification(NmPayload::Kiro::SystemManagerState state, bool hasError, bool flag) const;
    /// Its name is registered only while it is sent.
    void SendStartupNotification() const;

private:
    using StateRegistration = Nm::NotificationRegistration<NmPayload::Kiro::SystemManagerStatePayload>;

    const String sender = "System Manager";
    std::unique_ptr<StateRegistration> stateChange;
};

} // namespace Vela::System::Kiro::Internal::Sm
