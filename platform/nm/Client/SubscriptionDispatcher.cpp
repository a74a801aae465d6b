#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>

#include <Client/SubscriptionDispatcher.hpp>

#include <utility>

namespace Vela::System::Nm::Internal
{

SubscriptionDispatcher::SubscriptionDispatcher(String subscriberName, ServiceConnector serviceConnector,
                                               std::chrono::milliseconds wait)
    : processName(std::move(subscriberName))
    , connector(std::move(serviceConnector))
    , fetchWait(wait)
{
}

SubscriptionDispatcher::~SubscriptionDispatcher()
{
    Stop();
}

std::uint32_t SubscriptionDispatcher::Add(NamePattern pattern, Callback callback, MissedCallback missedCallback)
{
    const String patternText = pattern.GetText();
    // The broker may deliver before its answer to the subscription is here, so the callback has to be known first.
    const std::uint32_t id = Enlist(
        std::make_shared<Subscriber>(Subscriber{std::move(pattern), std::move(callback), std::move(missedCallback)}));
    try
    {
        const std::lock_guard sessionLock(sessionMutex);
        const Session current = Connect();
        if (!TrySubscribe(current, id, patternText))
        {
            // The session was lost unnoticed. A new one begins with all subscriptions, and this one cannot have missed
            // anything.
            Disconnect(current.number);
            std::erase(uncertain, id);
            Connect();
        }
        StartThread();
    }
    catch (...)
    {
        Remove(id);
        throw;
    }
    return id;
}

void SubscriptionDispatcher::Remove(std::uint32_t id) noexcept
{
    {
        SubscriberPointer removed;
        std::unique_lock lock(mutex);
        const auto found = subscribers.find(id);
        if (found == subscribers.end())
        {
            return;
        }
        removed = std::move(found->second);
        subscribers.erase(found);
        if (std::this_thread::get_id() != dispatchThread)
        {
            changed.wait(lock, [this, id] { return running != id; });
        }
        // What the callback has captured is destroyed without the lock.
        lock.unlock();
    }
    try
    {
        const std::lock_guard sessionLock(sessionMutex);
        if (session)
        {
            session->service->Unsubscribe(session->number, id);
        }
    }
    catch (...)
    {
        // The broker forgets the subscription with the session, and until then nobody listens to it here.
        log.Debug("The notification broker could not be told of the end of subscription {0}: {1}", id,
                  CaughtException::Current().GetText());
    }
}

void SubscriptionDispatcher::Stop()
{
    {
        const std::lock_guard lock(mutex);
        if (std::this_thread::get_id() == dispatchThread)
        {
            throw InvalidOperationException("The notifications cannot be ended from inside a callback.");
        }
        isStopping = true;
        changed.notify_all();
    }
    {
        const std::lock_guard sessionLock(sessionMutex);
        if (session)
        {
            try
            {
                // Ends the fetch that waits at the broker.
                session->service->CloseSession(session->number);
            }
            catch (...)
            {
                log.Debug("The notification session could not be closed: {0}", CaughtException::Current().GetText());
            }
            session.reset();
        }
    }
    if (thread.IsJoinable())
    {
        thread.Join();
        const std::lock_guard lock(mutex);
        dispatchThread = {};
    }
}

std::uint32_t SubscriptionDispatcher::Enlist(SubscriberPointer subscriber)
{
    const std::lock_guard lock(mutex);
    while (nextId == 0 || subscribers.contains(nextId))
    {
        ++nextId;
    }
    subscribers.emplace(nextId, std::move(subscriber));
    return nextId++;
}

bool SubscriptionDispatcher::TrySubscribe(const Session& current, std::uint32_t id, const String& pattern)
{
    try
    {
        current.service->Subscribe(current.number, id, pattern);
        return true;
    }
    catch (const KeyNotFoundException&)
    {
        return false;
    }
    catch (const RscException&)
    {
        return false;
    }
}

SubscriptionDispatcher::Session SubscriptionDispatcher::Connect()
{
    std::map<std::uint32_t, SubscriberPointer> present;
    {
        const std::lock_guard lock(mutex);
        if (isStopping)
        {
            throw InvalidOperationException("The notifications of this process have ended.");
        }
        present = subscribers;
    }
    if (!session)
    {
        Session opened{connector(), 0};
        opened.number = opened.service->OpenSession(processName);
        for (const auto& [id, subscriber] : present)
        {
            opened.service->Subscribe(opened.number, id, subscriber->pattern.GetText());
        }
        session = std::move(opened);
    }
    return *session;
}

void SubscriptionDispatcher::Disconnect(std::uint32_t number)
{
    if (session && session->number == number)
    {
        session.reset();
        const std::lock_guard lock(mutex);
        for (const auto& [id, subscriber] : subscribers)
        {
            uncertain.push_back(id);
        }
    }
}

void SubscriptionDispatcher::StartThread()
{
    const std::lock_guard lock(mutex);
    if (!isStopping && !thread.IsJoinable())
    {
        thread = Commons::Threading::Thread("NmDispatcher", [this] { Run(); });
    }
    changed.notify_all();
}

void SubscriptionDispatcher::Run()
{
    {
        const std::lock_guard lock(mutex);
        dispatchThread = std::this_thread::get_id();
    }
    while (true)
    {
        {
            std::unique_lock lock(mutex);
            changed.wait(lock, [this] { return isStopping || !subscribers.empty(); });
            if (isStopping)
            {
                return;
            }
        }
        NotificationDelivery delivery;
        if (TryReceive(delivery))
        {
            Dispatch(delivery);
            continue;
        }
        std::unique_lock lock(mutex);
        changed.wait_for(lock, reconnectPause, [this] { return isStopping; });
    }
}

bool SubscriptionDispatcher::TryReceive(NotificationDelivery& delivery)
{
    std::optional<Session> current;
    std::vector<std::uint32_t> missing;
    try
    {
        {
            const std::lock_guard sessionLock(sessionMutex);
            current = Connect();
            missing.swap(uncertain);
        }
        for (const std::uint32_t id : missing)
        {
            DispatchMisses(id, NotificationSubscription::unknownCount);
        }
        delivery = current->service->Fetch(current->number, static_cast<std::uint32_t>(fetchWait.count()));
        return true;
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        if (!IsStopping() && current)
        {
            log.Warning("The notification broker is lost, notifications may be missed: {0}", failure.GetText());
        }
        if (current)
        {
            const std::lock_guard sessionLock(sessionMutex);
            Disconnect(current->number);
        }
        return false;
    }
}

void SubscriptionDispatcher::Dispatch(const NotificationDelivery& delivery)
{
    for (const SubscriptionMisses& misses : delivery.misses)
    {
        DispatchMisses(misses.subscription, misses.count);
    }
    for (const DeliveredNotification& delivered : delivery.notifications)
    {
        for (const std::uint32_t id : delivered.subscriptions)
        {
            Call(id, [&delivered](const Subscriber& subscriber) { subscriber.callback(*delivered.notification); });
        }
    }
}

void SubscriptionDispatcher::DispatchMisses(std::uint32_t id, std::uint64_t count)
{
    Call(id,
         [count](const Subscriber& subscriber)
         {
             if (subscriber.missedCallback)
             {
                 subscriber.missedCallback(count);
             }
             else if (count == NotificationSubscription::unknownCount)
             {
                 log.Warning("Subscription '{0}' may have missed notifications.", subscriber.pattern.GetText());
             }
             else
             {
                 log.Warning("Subscription '{0}' missed {1} notifications.", subscriber.pattern.GetText(), count);
             }
         });
}

template <typename Function>
void SubscriptionDispatcher::Call(std::uint32_t id, Function&& function)
{
    SubscriberPointer subscriber;
    {
        const std::lock_guard lock(mutex);
        const auto found = subscribers.find(id);
        if (isStopping || found == subscribers.end())
        {
            return;
        }
        subscriber = found->second;
        running = id;
    }
    try
    {
        function(*subscriber);
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        log.Error("{0}", failure.Describe("Exception occurs in the callback of subscription '{0}': {1}",
                                          "Unspecified exception occurs in the callback of subscription '{0}'",
                                          subscriber->pattern.GetText()));
    }
    // Before anybody who waits for the end of the callback goes on: it may be the last reference to what it captured.
    subscriber.reset();
    const std::lock_guard lock(mutex);
    running = 0;
    changed.notify_all();
}

bool SubscriptionDispatcher::IsStopping() const
{
    const std::lock_guard lock(mutex);
    return isStopping;
}

} // namespace Vela::System::Nm::Internal
