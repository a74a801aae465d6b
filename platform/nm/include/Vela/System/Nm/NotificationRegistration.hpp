#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Nm/Api.hpp>
#include <Vela/System/Nm/Notification.hpp>
#include <Vela/System/Nm/NotificationPayload.hpp>
#include <Vela/System/Nm/Severity.hpp>
#include <Vela/TypeName.hpp>

#include <atomic>
#include <memory>
#include <utility>

namespace Vela::System::Nm
{

namespace Internal
{
class NotificationCore;
}

/// What registrations of all payload classes have in common. Not used directly.
class VELA_NM_API NotificationRegistrationBase : private Commons::Diagnostics::Loggable<NotificationRegistrationBase>
{
public:
    NotificationRegistrationBase(const NotificationRegistrationBase&) = delete;
    NotificationRegistrationBase& operator=(const NotificationRegistrationBase&) = delete;

    [[nodiscard]] const String& GetName() const noexcept;
    /// Unregisters the name, so that it may be registered again. Never throws: a failure is logged. A second call does
    /// nothing.
    void Dispose() noexcept;

protected:
    NotificationRegistrationBase(String notificationName, String senderName, Severity notificationSeverity);
    ~NotificationRegistrationBase();
    bool SendNotification(String payloadType, Commons::Chrono::DateTime timeStamp,
                          std::vector<NotificationField> fields) const;

private:
    const String name;
    const String sender;
    const Severity severity;
    const std::shared_ptr<Internal::NotificationCore> core;
    std::atomic<bool> isDisposed{false};
};

/// The right to send notifications of one name. Thread-safe: any thread may send at any time.
///
/// A registration belongs to the notification manager that is there when it is made, and outlives it harmlessly: from
/// its end on nothing is sent. Without a manager, from the beginning.
template <PayloadClass Payload>
class NotificationRegistration : public NotificationRegistrationBase
{
public:
    /// Registers a name; disposing or destroying the object unregisters it.
    /// @param name not empty, without "*"; at most 255 bytes
    /// @param sender who reports, in words for people; at most 255 bytes
    /// @throws ArgumentException when a text is not as described
    /// @throws InvalidOperationException when the name is registered in this process already
    NotificationRegistration(const String& name, const String& sender, Severity severity)
        : NotificationRegistrationBase(name, sender, severity)
    {
    }

    ~NotificationRegistration() = default;

    /// Sends a notification: takes a copy, hands it over and never waits for a subscriber or another process. What does
    /// not fit into the bounded queues any more is counted, and subscribers learn the count.
    /// Answers false when nothing was sent because the notification manager has ended or was never there.
    /// @throws InvalidOperationException when the registration has been disposed
    /// @throws ArgumentException when the payload is larger than the limit of a notification
    bool Send(const Payload& payload) const
    {
        return SendNotification(GetTypeName<Payload>(), payload.GetTimeStamp(), WritePayload(payload));
    }
};

} // namespace Vela::System::Nm
