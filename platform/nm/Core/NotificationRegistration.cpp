#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>

#include <Core/NamePattern.hpp>
#include <Core/NotificationCore.hpp>

namespace Vela::System::Nm
{

using Commons::Chrono::DateTime;

NotificationRegistrationBase::NotificationRegistrationBase(String notificationName, String senderName,
                                                           Severity notificationSeverity)
    : name(std::move(notificationName))
    , sender(std::move(senderName))
    , severity(notificationSeverity)
    , core(Internal::NotificationCore::GetCurrent())
{
    Internal::CheckNotificationName(name);
    Internal::CheckText("sender", sender);
    if (core != nullptr)
    {
        core->Register(name);
    }
}

NotificationRegistrationBase::~NotificationRegistrationBase()
{
    Dispose();
}

const String& NotificationRegistrationBase::GetName() const noexcept
{
    return name;
}

void NotificationRegistrationBase::Dispose() noexcept
{
    if (isDisposed.exchange(true) || core == nullptr)
    {
        return;
    }
    try
    {
        core->Unregister(name);
    }
    catch (...)
    {
        log.Error("Caught exception while unregistering notificationName={}: {}", name,
                  CaughtException::Current().GetText());
    }
}

bool NotificationRegistrationBase::SendNotification(String payloadType, DateTime timeStamp,
                                                    std::vector<NotificationField> fields) const
{
    if (isDisposed)
    {
        throw InvalidOperationException("The registration of notification '{0}' has been disposed.", name);
    }
    if (core == nullptr)
    {
        return false;
    }
    Notification notification;
    notification.name = name;
    notification.sender = sender;
    notification.severity = severity;
    notification.timeStamp = timeStamp == DateTime() ? DateTime::GetUtcNow() : timeStamp;
    notification.payloadType = std::move(payloadType);
    notification.fields = std::move(fields);
    return core->Send(std::move(notification));
}

} // namespace Vela::System::Nm
