#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>

#include <Broker/BoundedQueue.hpp>
#include <Broker/SubscriberSession.hpp>
#include <Core/NotificationLimits.hpp>
#include <Service/INotificationService.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace Vela::System::Nm::Internal
{

/// Takes the notifications of all processes and keeps them, within bounds, for the processes that subscribe. Until it
/// dispatches, it keeps them for whoever is subscribed when it begins to. Thread-safe.
class NotificationBroker final : public INotificationService, private Commons::Diagnostics::Loggable<NotificationBroker>
{
public:
    explicit NotificationBroker(const NotificationLimits& brokerLimits);

    void Publish(const NotificationBatch& batch) override;
    std::uint32_t OpenSession(const String& processName) override;
    void Subscribe(std::uint32_t session, std::uint32_t subscription, const String& pattern) override;
    void Unsubscribe(std::uint32_t session, std::uint32_t subscription) override;
    NotificationDelivery Fetch(std::uint32_t session, std::uint32_t waitMilliseconds) override;
    void CloseSession(std::uint32_t session) override;

    /// Takes a notification of the own process; false once the broker is closed.
    bool Post(const NotificationPointer& notification);
    void StartDispatching();
    /// Ends all sessions, with the fetches that wait in them; no new one is opened.
    void Close();

private:
    using SessionPointer = std::shared_ptr<SubscriberSession>;
    using Sessions = std::map<std::uint32_t, SessionPointer>;

    [[nodiscard]] SessionPointer GetSession(std::uint32_t session) const;
    void Close(Sessions::iterator session);
    void CloseSurplus(const Rsc::RscCaller& caller);
    void MakeRoom(const Rsc::RscCaller& caller);
    void AddLosses(const String& name, std::uint64_t count);
    void Take(const NotificationPointer& notification);

    const NotificationLimits limits;
    mutable std::mutex mutex;
    bool isDispatching = false;
    bool isClosed = false;
    BoundedQueue<NotificationPointer> heldBack;
    std::map<String, std::uint64_t> heldBackLosses;
    Sessions sessions;
    std::uint32_t nextSession = 1;
};

} // namespace Vela::System::Nm::Internal
