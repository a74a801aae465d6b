#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Nm/Notification.hpp>

#include <cstdint>
#include <memory>
#include <vector>

namespace Vela::System::Nm::Internal
{

/// Notifications are made once and shared from then on.
using NotificationPointer = std::shared_ptr<const Notification>;

/// How many notifications of a name were lost before the broker got them.
struct NotificationLoss
{
    String name;
    std::uint64_t count = 0;
};

/// What a sending process hands to the broker. The losses happened before the notifications were sent.
struct NotificationBatch
{
    std::vector<NotificationLoss> losses;
    std::vector<NotificationPointer> notifications;
};

/// How many notifications a subscription has missed.
struct SubscriptionMisses
{
    std::uint32_t subscription = 0;
    std::uint64_t count = 0;
};

/// A notification and the subscriptions of the process that want it.
struct DeliveredNotification
{
    NotificationPointer notification;
    std::vector<std::uint32_t> subscriptions;
};

/// What the broker hands to a subscribing process. The misses happened before the notifications were sent.
struct NotificationDelivery
{
    std::vector<SubscriptionMisses> misses;
    std::vector<DeliveredNotification> notifications;
};

} // namespace Vela::System::Nm::Internal
