#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Nm/Notification.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <Broker/NotificationBroker.hpp>
#include <Client/NotificationForwarder.hpp>
#include <Client/SubscriptionDispatcher.hpp>
#include <Core/NotificationLimits.hpp>

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>

namespace Vela::System::Nm::Internal
{

/// The notifications of a process: the broker or the way to it, the registered names and the subscriptions. Shared by
/// the manager and everything that was made under it, so that what outlives the manager finds a core that has ended
/// instead of none. Thread-safe.
class NotificationCore : private Commons::Diagnostics::Loggable<NotificationCore>
{
public:
    NotificationCore(String applicationName, const NotificationLimits& limits, bool withBroker);
    NotificationCore(const NotificationCore&) = delete;
    NotificationCore& operator=(const NotificationCore&) = delete;
    /// Closes.
    ~NotificationCore();

    /// The core of the present notification manager, or null.
    static std::shared_ptr<NotificationCore> GetCurrent();
    static void SetCurrent(std::shared_ptr<NotificationCore> core);

    /// @throws InvalidOperationException when the name is registered already
    void Register(const String& name);
    /// @throws KeyNotFoundException when the name is not registered
    void Unregister(const String& name);
    /// Adds the process's name and hands the notification over; false when the core has ended.
    /// @throws ArgumentException when it is too large
    bool Send(Notification notification);

    std::uint32_t Subscribe(const String& pattern, NotificationSubscription::Callback callback,
                            NotificationSubscription::MissedCallback missedCallback);
    void Unsubscribe(std::uint32_t id) noexcept;

    [[nodiscard]] bool HasBroker() const noexcept;
    /// Makes the broker, if there is one, reachable for other processes; without remoting it serves this process alone.
    void PublishBroker();
    void StartDispatching();
    /// Ends sending and receiving. A second call does nothing.
    /// @throws InvalidOperationException when called from a callback; nothing has ended then
    void Close();

private:
    [[nodiscard]] ServiceConnector GetConnector() const;

    const String processName;
    const std::shared_ptr<NotificationBroker> broker;
    NotificationForwarder forwarder;
    SubscriptionDispatcher dispatcher;
    std::mutex mutex;
    std::set<String> registeredNames;
    bool isPublished = false;
    bool isClosed = false;
};

} // namespace Vela::System::Nm::Internal
