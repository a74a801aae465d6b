#include <Vela/Exceptions.hpp>

#include <Broker/SubscriberSession.hpp>

#include <cstddef>
#include <utility>

namespace Vela::System::Nm::Internal
{

namespace
{

constexpr std::size_t maxSubscriptions = 1024;

} // namespace

SubscriberSession::SubscriberSession(Rsc::RscCaller sessionOwner, const NotificationLimits& limits)
    : owner(std::move(sessionOwner))
    , queue(limits)
{
}

bool SubscriberSession::IsOf(const Rsc::RscCaller& caller) const noexcept
{
    return owner.processId == caller.processId && (owner.processId != 0 || owner.processName == caller.processName);
}

const String& SubscriberSession::GetProcessName() const noexcept
{
    return owner.processName;
}

void SubscriberSession::Subscribe(std::uint32_t subscription, const String& pattern)
{
    NamePattern namePattern(pattern);
    if (subscriptions.size() >= maxSubscriptions && !subscriptions.contains(subscription))
    {
        throw InvalidOperationException("Process '{0}' has {1} subscriptions already, more are not possible.",
                                        owner.processName, maxSubscriptions);
    }
    subscriptions.insert_or_assign(subscription, std::move(namePattern));
}

void SubscriberSession::Unsubscribe(std::uint32_t subscription)
{
    subscriptions.erase(subscription);
    misses.erase(subscription);
}

void SubscriberSession::Offer(const NotificationPointer& notification)
{
    DeliveredNotification delivered{notification, {}};
    for (const auto& [subscription, pattern] : subscriptions)
    {
        if (pattern.Matches(notification->name))
        {
            delivered.subscriptions.push_back(subscription);
        }
    }
    if (delivered.subscriptions.empty())
    {
        return;
    }
    const std::size_t size = notification->GetSize() + delivered.subscriptions.size() * sizeof(std::uint32_t);
    queue.Push(std::move(delivered), size,
               [this](const DeliveredNotification& dropped)
               {
                   for (const std::uint32_t subscription : dropped.subscriptions)
                   {
                       if (subscriptions.contains(subscription))
                       {
                           ++misses[subscription];
                       }
                   }
               });
    changed.notify_all();
}

void SubscriberSession::AddLosses(const String& name, std::uint64_t count)
{
    for (const auto& [subscription, pattern] : subscriptions)
    {
        if (pattern.Matches(name))
        {
            misses[subscription] += count;
            changed.notify_all();
        }
    }
}

bool SubscriberSession::HasDelivery() const noexcept
{
    return !queue.IsEmpty() || !misses.empty();
}

NotificationDelivery SubscriberSession::Take()
{
    NotificationDelivery delivery;
    for (const auto& [subscription, count] : misses)
    {
        delivery.misses.push_back({subscription, count});
    }
    misses.clear();
    queue.PopBatch([&delivery](DeliveredNotification delivered)
                   { delivery.notifications.push_back(std::move(delivered)); });
    return delivery;
}

} // namespace Vela::System::Nm::Internal
