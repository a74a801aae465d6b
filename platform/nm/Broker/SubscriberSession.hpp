#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>

#include <Broker/BoundedQueue.hpp>
#include <Core/NamePattern.hpp>
#include <Core/NotificationLimits.hpp>
#include <Service/NotificationMessages.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>

namespace Vela::System::Nm::Internal
{

/// A subscribing process at the broker: what it wants, what waits for it and what it missed. Which subscriptions want
/// a notification is decided when the notification comes, so a subscription gets exactly what came after it. Guarded by
/// the broker.
class SubscriberSession
{
public:
    using Clock = std::chrono::steady_clock;

    SubscriberSession(Rsc::RscCaller sessionOwner, const NotificationLimits& limits);

    /// Whether it is a session of that process. Processes whose ids are not known are told apart by their names.
    [[nodiscard]] bool IsOf(const Rsc::RscCaller& caller) const noexcept;

    [[nodiscard]] const String& GetProcessName() const noexcept;
    /// @throws ArgumentException for a malformed pattern
    /// @throws InvalidOperationException when the session has too many subscriptions
    void Subscribe(std::uint32_t subscription, const String& pattern);
    void Unsubscribe(std::uint32_t subscription);

    /// Queues a notification for the subscriptions that want it.
    void Offer(const NotificationPointer& notification);
    /// Counts notifications that are lost for good, for the subscriptions that would have wanted them.
    void AddLosses(const String& name, std::uint64_t count);
    [[nodiscard]] bool HasDelivery() const noexcept;
    NotificationDelivery Take();

    /// Tells fetching threads that there is something or that the session is closed.
    std::condition_variable changed;
    bool isClosed = false;
    /// Calls that fetch at this moment, and when the last one ended.
    unsigned fetchers = 0;
    Clock::time_point lastUse = Clock::now();

private:
    const Rsc::RscCaller owner;
    std::map<std::uint32_t, NamePattern> subscriptions;
    BoundedQueue<DeliveredNotification> queue;
    std::map<std::uint32_t, std::uint64_t> misses;
};

} // namespace Vela::System::Nm::Internal
