#include <Vela/Exceptions.hpp>

#include <Broker/NotificationBroker.hpp>
#include <Core/NamePattern.hpp>

#include <algorithm>
#include <chrono>

namespace Vela::System::Nm::Internal
{

namespace
{

constexpr std::uint32_t maxWaitMilliseconds = 60'000;
constexpr std::size_t maxSessionsPerProcess = 4;

} // namespace

NotificationBroker::NotificationBroker(const NotificationLimits& brokerLimits)
    : limits(brokerLimits)
    , heldBack(brokerLimits)
{
}

void NotificationBroker::Publish(const NotificationBatch& batch)
{
    for (const NotificationPointer& notification : batch.notifications)
    {
        CheckNotificationName(notification->name);
        if (notification->GetSize() > maxNotificationSize)
        {
            throw ArgumentException("Notification '{0}' is larger than {1} bytes.", notification->name,
                                    maxNotificationSize);
        }
    }
    const std::lock_guard lock(mutex);
    if (isClosed)
    {
        throw InvalidOperationException("The notification broker has ended.");
    }
    for (const NotificationLoss& loss : batch.losses)
    {
        AddLosses(loss.name, loss.count);
    }
    for (const NotificationPointer& notification : batch.notifications)
    {
        Take(notification);
    }
}

std::uint32_t NotificationBroker::OpenSession(const String& processName)
{
    const std::lock_guard lock(mutex);
    if (isClosed)
    {
        throw InvalidOperationException("The notification broker has ended.");
    }
    Rsc::RscCaller caller = Rsc::RscCaller::GetCurrent();
    caller.processName = processName;
    CloseSurplus(caller);
    MakeRoom(caller);
    while (nextSession == 0 || sessions.contains(nextSession))
    {
        ++nextSession;
    }
    sessions.emplace(nextSession, std::make_shared<SubscriberSession>(caller, limits));
    return nextSession++;
}

void NotificationBroker::Subscribe(std::uint32_t session, std::uint32_t subscription, const String& pattern)
{
    const std::lock_guard lock(mutex);
    GetSession(session)->Subscribe(subscription, pattern);
}

void NotificationBroker::Unsubscribe(std::uint32_t session, std::uint32_t subscription)
{
    const std::lock_guard lock(mutex);
    GetSession(session)->Unsubscribe(subscription);
}

NotificationDelivery NotificationBroker::Fetch(std::uint32_t session, std::uint32_t waitMilliseconds)
{
    std::unique_lock lock(mutex);
    const SessionPointer subscriber = GetSession(session);
    ++subscriber->fetchers;
    subscriber->changed.wait_for(lock, std::chrono::milliseconds(std::min(waitMilliseconds, maxWaitMilliseconds)),
                                 [&subscriber] { return subscriber->isClosed || subscriber->HasDelivery(); });
    --subscriber->fetchers;
    subscriber->lastUse = SubscriberSession::Clock::now();
    if (subscriber->isClosed)
    {
        throw KeyNotFoundException("The notification session {0} of process '{1}' was closed.", session,
                                   subscriber->GetProcessName());
    }
    return subscriber->Take();
}

void NotificationBroker::CloseSession(std::uint32_t session)
{
    const std::lock_guard lock(mutex);
    const auto found = sessions.find(session);
    if (found != sessions.end())
    {
        Close(found);
    }
}

bool NotificationBroker::Post(const NotificationPointer& notification)
{
    const std::lock_guard lock(mutex);
    if (isClosed)
    {
        return false;
    }
    Take(notification);
    return true;
}

void NotificationBroker::StartDispatching()
{
    const std::lock_guard lock(mutex);
    if (isDispatching || isClosed)
    {
        return;
    }
    isDispatching = true;
    for (const auto& [name, count] : heldBackLosses)
    {
        log.Warning("{0} notifications '{1}' were dropped before dispatching began.", count, name);
        AddLosses(name, count);
    }
    heldBackLosses.clear();
    while (!heldBack.IsEmpty())
    {
        Take(heldBack.Pop());
    }
}

void NotificationBroker::Close()
{
    const std::lock_guard lock(mutex);
    isClosed = true;
    for (const auto& [number, session] : sessions)
    {
        session->isClosed = true;
        session->changed.notify_all();
    }
    sessions.clear();
}

NotificationBroker::SessionPointer NotificationBroker::GetSession(std::uint32_t session) const
{
    const auto found = sessions.find(session);
    if (found == sessions.end())
    {
        throw KeyNotFoundException("There is no notification session {0}.", session);
    }
    return found->second;
}

/// A process has one session, and a second one for a while when it had to connect anew. One that opens more than a few
/// loses its own ones.
void NotificationBroker::CloseSurplus(const Rsc::RscCaller& caller)
{
    auto oldest = sessions.end();
    std::size_t count = 0;
    for (auto session = sessions.begin(); session != sessions.end(); ++session)
    {
        if (session->second->IsOf(caller))
        {
            ++count;
            oldest = oldest == sessions.end() || session->second->lastUse < oldest->second->lastUse ? session : oldest;
        }
    }
    if (count >= maxSessionsPerProcess)
    {
        log.Warning("The oldest of {0} notification sessions of {1} was closed, more it cannot have.", count,
                    caller.ToString());
        Close(oldest);
    }
}

void NotificationBroker::Close(Sessions::iterator session)
{
    session->second->isClosed = true;
    session->second->changed.notify_all();
    sessions.erase(session);
}

void NotificationBroker::MakeRoom(const Rsc::RscCaller& caller)
{
    if (sessions.size() < limits.maxSubscribers)
    {
        return;
    }
    const auto oldest = std::min_element(sessions.begin(), sessions.end(),
                                         [](const auto& left, const auto& right)
                                         {
                                             return std::pair(left.second->fetchers, left.second->lastUse) <
                                                    std::pair(right.second->fetchers, right.second->lastUse);
                                         });
    if (oldest->second->fetchers > 0 ||
        SubscriberSession::Clock::now() - oldest->second->lastUse < limits.subscriberIdleTime)
    {
        log.Warning("Refused a notification session to {0}: {1} processes subscribe already, which is the limit.",
                    caller.ToString(), sessions.size());
        throw InvalidOperationException("{0} processes subscribe to notifications already, more are not possible.",
                                        sessions.size());
    }
    log.Warning("The notification session of process '{0}' was given up: it has not fetched for a long time.",
                oldest->second->GetProcessName());
    sessions.erase(oldest);
}

void NotificationBroker::AddLosses(const String& name, std::uint64_t count)
{
    if (!isDispatching)
    {
        if (heldBackLosses.size() < maxLossNames || heldBackLosses.contains(name))
        {
            heldBackLosses[name] += count;
        }
        return;
    }
    for (const auto& [number, session] : sessions)
    {
        session->AddLosses(name, count);
    }
}

void NotificationBroker::Take(const NotificationPointer& notification)
{
    if (!isDispatching)
    {
        heldBack.Push(notification, notification->GetSize(),
                      [this](const NotificationPointer& dropped) { AddLosses(dropped->name, 1); });
        return;
    }
    for (const auto& [number, session] : sessions)
    {
        session->Offer(notification);
    }
}

} // namespace Vela::System::Nm::Internal
