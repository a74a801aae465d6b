#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <Client/ServiceConnector.hpp>
#include <Core/NamePattern.hpp>
#include <Service/NotificationMessages.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace Vela::System::Nm::Internal
{

/// The subscriptions of a process and the thread that fetches for them from the broker and calls them. It begins with
/// the first subscription. A broker that is lost is looked for again, and the subscriptions learn that they missed an
/// unknown number of notifications. Thread-safe.
class SubscriptionDispatcher : private Commons::Diagnostics::Loggable<SubscriptionDispatcher>
{
public:
    using Callback = NotificationSubscription::Callback;
    using MissedCallback = NotificationSubscription::MissedCallback;

    /// @param wait how long one fetch may wait at the broker
    SubscriptionDispatcher(String subscriberName, ServiceConnector serviceConnector, std::chrono::milliseconds wait);
    SubscriptionDispatcher(const SubscriptionDispatcher&) = delete;
    SubscriptionDispatcher& operator=(const SubscriptionDispatcher&) = delete;
    /// Stops.
    ~SubscriptionDispatcher();

    /// @return the subscription's number, never 0
    std::uint32_t Add(NamePattern pattern, Callback callback, MissedCallback missedCallback);
    /// Waits for a callback of the subscription in progress, unless called from it.
    void Remove(std::uint32_t id) noexcept;
    /// Waits for a callback in progress and ends the thread. A second call does nothing.
    /// @throws InvalidOperationException when called from a callback
    void Stop();

private:
    struct Subscriber
    {
        NamePattern pattern;
        Callback callback;
        MissedCallback missedCallback;
    };
    using SubscriberPointer = std::shared_ptr<Subscriber>;

    struct Session
    {
        std::shared_ptr<INotificationService> service;
        std::uint32_t number;
    };

    std::uint32_t Enlist(SubscriberPointer subscriber);
    static bool TrySubscribe(const Session& current, std::uint32_t id, const String& pattern);
    Session Connect();
    void Disconnect(std::uint32_t number);
    void StartThread();
    void Run();
    bool TryReceive(NotificationDelivery& delivery);
    void Dispatch(const NotificationDelivery& delivery);
    void DispatchMisses(std::uint32_t id, std::uint64_t count);
    template <typename Function>
    void Call(std::uint32_t id, Function&& function);
    [[nodiscard]] bool IsStopping() const;

    const String processName;
    const ServiceConnector connector;
    const std::chrono::milliseconds fetchWait;

    /// Taken before the other one where both are; held while the broker is asked.
    std::mutex sessionMutex;
    std::optional<Session> session;
    std::vector<std::uint32_t> uncertain;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::map<std::uint32_t, SubscriberPointer> subscribers;
    std::uint32_t nextId = 1;
    std::uint32_t running = 0;
    std::thread::id dispatchThread;
    bool isStopping = false;
    Commons::Threading::Thread thread;
};

} // namespace Vela::System::Nm::Internal
