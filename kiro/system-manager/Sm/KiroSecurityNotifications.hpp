#pragma once

#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/NmPayload/Security/SecurityNotificationPayload.hpp>

namespace Vela::System::Kiro::Internal::Security
{

/// Tells whoever guards the system of what the framework does to it. While it lives it is the plain singleton of its
/// type. Sending is thread-safe.
class KiroSecurityNotifications
{
public:
    /// @throws Exception when there is no notification manager
    KiroSecurityNotifications();
    KiroSecurityNotifications(const KiroSecurityNotifications&) = delete;
    KiroSecurityNotifications& operator=(const KiroSecurityNotifications&) = delete;
    ~KiroSecurityNotifications();

    void SendSystemRestartingNotification() const;

private:
    Nm::NotificationRegistration<NmPayload::Security::SecurityNotificationPayload> restarting;
};

} // namespace Vela::System::Kiro::Internal::Security
