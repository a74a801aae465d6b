#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <Broker/NotificationBroker.hpp>
#include <Client/NotificationForwarder.hpp>
#include <Client/SubscriptionDispatcher.hpp>
#include <Inbox.hpp>
#include <TemporaryDirectory.hpp>
#include <TestPayload.hpp>
#include <gtest/gtest.h>

#include <atomic>

namespace Vela::Testing
{

using namespace System::Nm;
using namespace System::Nm::Internal;

namespace
{

NotificationPointer Make(int number)
{
    auto notification = std::make_shared<Notification>();
    notification->name = "A";
    notification->payloadType = GetTypeName<NumberPayload>();
    notification->fields = WritePayload(NumberPayload(number));
    return notification;
}

/// A way to a broker that can be cut.
class FragileService final : public INotificationService
{
public:
    explicit FragileService(std::shared_ptr<NotificationBroker> realBroker)
        : broker(std::move(realBroker))
    {
    }

    void Publish(const NotificationBatch& batch) override
    {
        isPublishing.Open();
        mayPublish.Await();
        Check();
        broker->Publish(batch);
    }

    std::uint32_t OpenSession(const String& processName) override
    {
        Check();
        return broker->OpenSession(processName);
    }

    void Subscribe(std::uint32_t session, std::uint32_t subscription, const String& pattern) override
    {
        Check();
        broker->Subscribe(session, subscription, pattern);
    }

    void Unsubscribe(std::uint32_t session, std::uint32_t subscription) override
    {
        Check();
        broker->Unsubscribe(session, subscription);
    }

    NotificationDelivery Fetch(std::uint32_t session, std::uint32_t waitMilliseconds) override
    {
        Check();
        fetchWait = waitMilliseconds;
        isFetching.Open();
        return broker->Fetch(session, waitMilliseconds);
    }

    void CloseSession(std::uint32_t session) override
    {
        Check();
        broker->CloseSession(session);
    }

    Gate isPublishing;
    Gate mayPublish;
    Gate isFetching;
    std::atomic<std::uint32_t> fetchWait{0};
    std::atomic<bool> isCut{false};

private:
    void Check() const
    {
        if (isCut)
        {
            throw RscException("cut");
        }
    }

    const std::shared_ptr<NotificationBroker> broker;
};

class NotificationClient : public ::testing::Test
{
protected:
    NotificationClient()
    {
        broker->StartDispatching();
    }

    ServiceConnector GetConnector()
    {
        return [this]() -> std::shared_ptr<INotificationService>
        {
            const std::lock_guard lock(mutex);
            if (service == nullptr)
            {
                throw RscException("nobody there");
            }
            return service;
        };
    }

    std::shared_ptr<FragileService> Connect(const std::shared_ptr<NotificationBroker>& target)
    {
        const std::lock_guard lock(mutex);
        service = std::make_shared<FragileService>(target);
        return service;
    }

    const std::shared_ptr<NotificationBroker> broker = std::make_shared<NotificationBroker>(NotificationLimits{});
    Inbox inbox;

private:
    std::mutex mutex;
    std::shared_ptr<FragileService> service;
};

using Items = std::vector<std::int64_t>;

} // namespace

TEST_F(NotificationClient, CountsWhatCannotBeHandedOver)
{
    NotificationLimits limits;
    limits.maxQueuedNotifications = 2;
    NotificationForwarder forwarder(GetConnector(), limits);
    SubscriptionDispatcher dispatcher(
        "P", [this] { return broker; }, std::chrono::seconds(60));
    (void)dispatcher.Add(NamePattern("A"), inbox.Receive(), inbox.Miss());

    const auto first = Connect(broker);
    EXPECT_TRUE(forwarder.Post(Make(1)));
    ASSERT_TRUE(first->isPublishing.Await());
    for (const int number : {2, 3, 4, 5})
    {
        EXPECT_TRUE(forwarder.Post(Make(number))) << "while the way is blocked";
    }
    Connect(broker)->mayPublish.Open();
    first->isCut = true;
    first->mayPublish.Open();

    EXPECT_EQ(inbox.Await(3), (Items{-3, 4, 5}));
    forwarder.Stop();
    EXPECT_FALSE(forwarder.Post(Make(6)));
}

TEST_F(NotificationClient, TellsOfALossWithoutWaitingForTheNextNotification)
{
    NotificationForwarder forwarder(GetConnector(), {});
    SubscriptionDispatcher dispatcher(
        "P", [this] { return broker; }, std::chrono::seconds(60));
    (void)dispatcher.Add(NamePattern("A"), inbox.Receive(), inbox.Miss());

    const auto first = Connect(broker);
    EXPECT_TRUE(forwarder.Post(Make(1)));
    ASSERT_TRUE(first->isPublishing.Await());
    Connect(broker)->mayPublish.Open();
    first->isCut = true;
    first->mayPublish.Open();
    EXPECT_EQ(inbox.Await(1), Items{-1});
}

TEST_F(NotificationClient, HandsOverWhatIsQueuedBeforeItStops)
{
    const std::uint32_t session = broker->OpenSession("P");
    broker->Subscribe(session, 1, "*");
    const auto service = Connect(broker);
    NotificationForwarder forwarder(GetConnector(), {});
    forwarder.Post(Make(1));
    ASSERT_TRUE(service->isPublishing.Await());
    forwarder.Post(Make(2));
    service->mayPublish.Open();
    forwarder.Stop();
    EXPECT_EQ(broker->Fetch(session, 0).notifications.size(), 2U);
}

TEST_F(NotificationClient, StopsWithoutABroker)
{
    NotificationForwarder forwarder(GetConnector(), {});
    forwarder.Post(Make(1));
    forwarder.Stop();
    SubscriptionDispatcher dispatcher("P", GetConnector(), std::chrono::seconds(60));
    EXPECT_THROW(dispatcher.Add(NamePattern("A"), inbox.Receive(), {}), RscException);
    dispatcher.Stop();
    EXPECT_THROW(dispatcher.Add(NamePattern("A"), inbox.Receive(), {}), InvalidOperationException);
}

TEST_F(NotificationClient, SubscribesAnewAtABrokerThatCameBack)
{
    Connect(broker);
    SubscriptionDispatcher dispatcher("P", GetConnector(), std::chrono::seconds(60));
    (void)dispatcher.Add(NamePattern("A"), inbox.Receive(), inbox.Miss());
    broker->Post(Make(1));
    EXPECT_EQ(inbox.Await(1), Items{1});

    const auto next = std::make_shared<NotificationBroker>(NotificationLimits{});
    next->Post(Make(2));
    Connect(next);
    broker->Close();
    EXPECT_EQ(inbox.Await(2), (Items{1, Inbox::unknownMisses}));
    next->StartDispatching();
    next->Post(Make(3));
    EXPECT_EQ(inbox.Await(4), (Items{1, Inbox::unknownMisses, 2, 3}));
}

TEST_F(NotificationClient, NoticesALostBrokerWhenItSubscribesAgain)
{
    const auto service = Connect(broker);
    SubscriptionDispatcher dispatcher("P", GetConnector(), std::chrono::milliseconds(50));
    dispatcher.Remove(dispatcher.Add(NamePattern("A"), inbox.Receive(), inbox.Miss()));
    service->isCut = true;
    Connect(broker);
    (void)dispatcher.Add(NamePattern("A"), inbox.Receive(), inbox.Miss());
    broker->Post(Make(1));
    EXPECT_EQ(inbox.Await(1), Items{1}) << "a new subscription has missed nothing";
}

TEST_F(NotificationClient, FetchesWellWithinTheTimeOfACall)
{
    const TemporaryDirectory directory;
    ::setenv("VELA_PATH_RUNTIME_DIR", directory.GetPath().c_str(), 1);
    AppDomain::CreateInstance();
    System::Rsc::RscManagerOptions options;
    options.callTimeout = std::chrono::milliseconds(600);
    System::Rsc::RscManager::CreateInstance("Main", 0, options, true);
    const auto service = Connect(broker);
    System::Rsc::RscServiceFactory<INotificationService, FragileService> factory([service] { return service; });
    System::Rsc::ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
    NotificationManagerSetup::Setup("Main", false);
    {
        const NotificationSubscription subscription("A", inbox.Receive());
        EXPECT_TRUE(service->isFetching.Await());
        EXPECT_EQ(service->fetchWait, 300U);
    }
    NotificationManagerSetup::Dispose();
    System::Rsc::RscManager::DisposeInstance();
    ::unsetenv("VELA_PATH_RUNTIME_DIR");
}

} // namespace Vela::Testing
