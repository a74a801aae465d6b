#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Nm/NotificationPayload.hpp>

#include <tuple>
#include <utility>

namespace Vela::System::NmPayload::Security
{

/// Something that matters to whoever guards the system, in words for people.
class SecurityNotificationPayload : public Nm::NotificationPayload
{
public:
    SecurityNotificationPayload() = default;

    explicit SecurityNotificationPayload(String text)
        : message(std::move(text))
    {
    }

    [[nodiscard]] const String& GetMessage() const noexcept
    {
        return message;
    }

    static constexpr auto Fields()
    {
        return std::tuple(Nm::PayloadField("message", &SecurityNotificationPayload::message));
    }

private:
    String message;
};

} // namespace Vela::System::NmPayload::Security
