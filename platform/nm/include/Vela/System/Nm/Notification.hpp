#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Nm/Api.hpp>
#include <Vela/System/Nm/NotificationPayload.hpp>
#include <Vela/System/Nm/Severity.hpp>
#include <Vela/TypeName.hpp>

#include <cstddef>
#include <vector>

namespace Vela::System::Nm
{

/// A notification as a subscriber receives it: a plain value, owned by whoever holds it.
struct VELA_NM_API Notification
{
    /// What happened, such as "Vela.System.Kiro.SystemManager.StateChanged".
    String name;
    /// Who reports it, in words for people.
    String sender;
    /// Name of the process that sent it.
    String process;
    Severity severity = Severity::Information;
    /// When it happened, in UTC.
    Commons::Chrono::DateTime timeStamp;
    /// Readable name of the payload's class.
    String payloadType;
    std::vector<NotificationField> fields;

    /// The payload as an object of its class.
    /// @throws InvalidOperationException when the notification carries another class, or a value that does not fit
    /// @throws KeyNotFoundException when a field is missing
    template <PayloadClass T>
    [[nodiscard]] T GetPayload() const
    {
        CheckPayloadType(GetTypeName<T>());
        T payload = ReadPayload<T>(fields);
        payload.SetTimeStamp(timeStamp);
        return payload;
    }

    /// One line for people:
    /// "2024-08-01T12:34:56.123456Z Information Plant.LevelChanged [Level Control, Tank1]: level=1.5, isHigh=false".
    [[nodiscard]] String ToString() const;
    /// Bytes of memory that it takes, about; what the limits of queues count.
    [[nodiscard]] std::size_t GetSize() const noexcept;

    bool operator==(const Notification&) const = default;

private:
    void CheckPayloadType(const String& expected) const;
};

/// The text of a value: true and false, shortest exact numbers, texts as they are.
VELA_NM_API String ToString(const NotificationValue& value);

} // namespace Vela::System::Nm
