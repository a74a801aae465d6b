#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <Core/NamePattern.hpp>
#include <Core/NotificationCore.hpp>
#include <Service/NotificationServiceProxy.hpp>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Vela::System::Nm::Internal
{

namespace
{

constexpr const char* serviceName = Rsc::OperationTable<INotificationService>::interfaceName;

/// At the broker of the own process nothing stands against a long wait.
constexpr std::chrono::milliseconds localFetchWait{60'000};
constexpr std::chrono::milliseconds longestRemoteFetchWait{1000};
constexpr std::chrono::milliseconds connectTimeout{1000};

struct CurrentCore
{
    std::mutex mutex;
    std::shared_ptr<NotificationCore> core;
};

CurrentCore& GetCurrentCore()
{
    static CurrentCore current;
    return current;
}

/// Well below the time after which the call would count as lost.
std::chrono::milliseconds GetRemoteFetchWait()
{
    const auto* remoting = AppDomainSingleton<Rsc::RscManager>::TryGetInstance();
    return remoting == nullptr ? longestRemoteFetchWait
                               : std::min(longestRemoteFetchWait, remoting->GetCallTimeout() / 2);
}

std::shared_ptr<INotificationService> FindBroker()
{
    // Never destroyed: a process that ends without disposing hands its last notifications over after that.
    static const auto& factory = *new NotificationServiceProxyFactory(Rsc::ServiceProvider::MainProcess());
    auto service = Rsc::ServiceManager::TryGetService(factory, factory.GetDefaultProvider(), connectTimeout);
    if (service == nullptr)
    {
        throw RscException("The notification broker in the main process cannot be reached.");
    }
    return service;
}

} // namespace

NotificationCore::NotificationCore(String applicationName, const NotificationLimits& limits, bool withBroker)
    : processName(std::move(applicationName))
    , broker(withBroker ? std::make_shared<NotificationBroker>(limits) : nullptr)
    , forwarder(GetConnector(), limits)
    , dispatcher(processName, GetConnector(), withBroker ? localFetchWait : GetRemoteFetchWait())
{
}

NotificationCore::~NotificationCore()
{
    Close();
}

std::shared_ptr<NotificationCore> NotificationCore::GetCurrent()
{
    CurrentCore& current = GetCurrentCore();
    const std::lock_guard lock(current.mutex);
    return current.core;
}

void NotificationCore::SetCurrent(std::shared_ptr<NotificationCore> core)
{
    CurrentCore& current = GetCurrentCore();
    const std::lock_guard lock(current.mutex);
    current.core = std::move(core);
}

void NotificationCore::Register(const String& name)
{
    const std::lock_guard lock(mutex);
    if (!registeredNames.insert(name).second)
    {
        throw InvalidOperationException("Notification '{0}' is registered already.", name);
    }
}

void NotificationCore::Unregister(const String& name)
{
    const std::lock_guard lock(mutex);
    if (registeredNames.erase(name) == 0)
    {
        throw KeyNotFoundException("Notification '{0}' is not registered.", name);
    }
}

bool NotificationCore::Send(Notification notification)
{
    notification.process = processName;
    if (const std::size_t size = notification.GetSize(); size > maxNotificationSize)
    {
        throw ArgumentException::ForParameter("payload", fmt::format("Notification '{}' takes {} bytes, more than {}.",
                                                                     notification.name, size, maxNotificationSize));
    }
    const auto shared = std::make_shared<const Notification>(std::move(notification));
    return broker != nullptr ? broker->Post(shared) : forwarder.Post(shared);
}

std::uint32_t NotificationCore::Subscribe(const String& pattern, NotificationSubscription::Callback callback,
                                          NotificationSubscription::MissedCallback missedCallback)
{
    return dispatcher.Add(NamePattern(pattern), std::move(callback), std::move(missedCallback));
}

void NotificationCore::Unsubscribe(std::uint32_t id) noexcept
{
    dispatcher.Remove(id);
}

bool NotificationCore::HasBroker() const noexcept
{
    return broker != nullptr;
}

void NotificationCore::PublishBroker()
{
    if (broker == nullptr || AppDomainSingleton<Rsc::RscManager>::TryGetInstance() == nullptr)
    {
        return;
    }
    Rsc::RscServiceFactory<INotificationService, NotificationBroker> factory([service = broker] { return service; });
    Rsc::ServiceManager::PublishService({}, serviceName, factory);
    const std::lock_guard lock(mutex);
    isPublished = true;
}

void NotificationCore::StartDispatching()
{
    if (broker != nullptr)
    {
        broker->StartDispatching();
    }
}

void NotificationCore::Close()
{
    // First, because it may refuse; a second time it does nothing.
    dispatcher.Stop();
    bool wasPublished = false;
    {
        const std::lock_guard lock(mutex);
        if (isClosed)
        {
            return;
        }
        isClosed = true;
        wasPublished = isPublished;
    }
    forwarder.Stop();
    if (broker != nullptr)
    {
        broker->Close();
    }
    if (wasPublished && !Rsc::ServiceManager::UnpublishService({}, serviceName))
    {
        log.Warning("A call of the notification service has not ended in time.");
    }
}

ServiceConnector NotificationCore::GetConnector() const
{
    if (broker == nullptr)
    {
        return FindBroker;
    }
    return [service = broker]
    {
        return service;
    };
}

} // namespace Vela::System::Nm::Internal
