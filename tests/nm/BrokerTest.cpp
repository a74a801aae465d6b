#include <Vela/Exceptions.hpp>

#include <Broker/NotificationBroker.hpp>
#include <Inbox.hpp>
#include <TestPayload.hpp>
#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace Vela::Testing
{

using namespace System::Nm;
using namespace System::Nm::Internal;

namespace
{

NotificationPointer Make(const String& name, const String& text = {})
{
    auto notification = std::make_shared<Notification>();
    notification->name = name;
    notification->fields = WritePayload(NumberPayload(0, text));
    return notification;
}

std::vector<String> GetNames(const NotificationDelivery& delivery)
{
    std::vector<String> names;
    for (const DeliveredNotification& delivered : delivery.notifications)
    {
        names.push_back(delivered.notification->name);
    }
    return names;
}

using Names = std::vector<String>;

} // namespace

TEST(NotificationBroker, DeliversToTheSubscriptionsThatMatch)
{
    NotificationBroker broker{{}};
    broker.StartDispatching();
    const std::uint32_t session = broker.OpenSession("P");
    broker.Subscribe(session, 1, "A.b");
    broker.Subscribe(session, 2, "A.*");
    broker.Subscribe(session, 3, "*");
    for (const char* name : {"A.b", "A.bc", "A", "A.", "B"})
    {
        broker.Post(Make(name));
    }
    broker.Unsubscribe(session, 3);
    broker.Post(Make("C"));

    const NotificationDelivery delivery = broker.Fetch(session, 0);
    ASSERT_EQ(GetNames(delivery), (Names{"A.b", "A.bc", "A", "A.", "B"}));
    EXPECT_EQ(delivery.notifications[0].subscriptions, (std::vector<std::uint32_t>{1, 2, 3}));
    EXPECT_EQ(delivery.notifications[1].subscriptions, (std::vector<std::uint32_t>{2, 3}));
    EXPECT_EQ(delivery.notifications[2].subscriptions, (std::vector<std::uint32_t>{3}));
    EXPECT_EQ(delivery.notifications[3].subscriptions, (std::vector<std::uint32_t>{2, 3}));
    EXPECT_TRUE(broker.Fetch(session, 0).notifications.empty());
}

TEST(NotificationBroker, HoldsBackUntilItDispatches)
{
    NotificationLimits limits;
    limits.maxQueuedNotifications = 3;
    NotificationBroker broker(limits);
    const std::uint32_t session = broker.OpenSession("P");
    for (const char* name : {"A", "B", "A", "C", "D"})
    {
        broker.Post(Make(name));
    }
    broker.Subscribe(session, 1, "A");
    broker.Subscribe(session, 2, "*");
    EXPECT_TRUE(broker.Fetch(session, 0).notifications.empty());

    broker.StartDispatching();
    const NotificationDelivery delivery = broker.Fetch(session, 0);
    EXPECT_EQ(GetNames(delivery), (Names{"A", "C", "D"}));
    ASSERT_EQ(delivery.misses.size(), 2U);
    EXPECT_EQ(delivery.misses[0].count, 1U) << "of the A's";
    EXPECT_EQ(delivery.misses[1].count, 2U) << "of all";

    const std::uint32_t late = broker.OpenSession("Q");
    broker.Subscribe(late, 1, "*");
    broker.StartDispatching();
    EXPECT_TRUE(broker.Fetch(late, 0).notifications.empty()) << "what was sent before the subscription";
}

TEST(NotificationBroker, CountsWhatASlowSubscriberMisses)
{
    NotificationLimits limits;
    limits.maxQueuedBytes = 100'000;
    NotificationBroker broker(limits);
    broker.StartDispatching();
    const std::uint32_t session = broker.OpenSession("P");
    broker.Subscribe(session, 1, "Small");
    broker.Subscribe(session, 2, "*");
    broker.Post(Make("Small"));
    for (int i = 0; i < 5; ++i)
    {
        broker.Post(Make("Big", String(30'000, 'x')));
    }
    broker.Publish({{{"Small", 10}}, {Make("Small")}});

    const NotificationDelivery delivery = broker.Fetch(session, 0);
    EXPECT_EQ(GetNames(delivery), (Names{"Big", "Big", "Big", "Small"}));
    ASSERT_EQ(delivery.misses.size(), 2U);
    EXPECT_EQ(delivery.misses[0].count, 11U) << "one dropped here, ten lost at the sender";
    EXPECT_EQ(delivery.misses[1].count, 13U);
    EXPECT_TRUE(broker.Fetch(session, 0).misses.empty()) << "told once";
}

TEST(NotificationBroker, DeliversInBatches)
{
    NotificationBroker broker{{}};
    broker.StartDispatching();
    const std::uint32_t session = broker.OpenSession("P");
    broker.Subscribe(session, 1, "*");
    for (std::size_t i = 0; i < maxBatchCount + 1; ++i)
    {
        broker.Post(Make("A"));
    }
    EXPECT_EQ(broker.Fetch(session, 0).notifications.size(), maxBatchCount);
    EXPECT_EQ(broker.Fetch(session, 0).notifications.size(), 1U);
}

TEST(NotificationBroker, WakesAWaitingSubscriber)
{
    NotificationBroker broker{{}};
    broker.StartDispatching();
    const std::uint32_t session = broker.OpenSession("P");
    broker.Subscribe(session, 1, "*");
    auto fetched = std::async(std::launch::async, [&] { return broker.Fetch(session, 60'000); });
    broker.Post(Make("A"));
    EXPECT_EQ(GetNames(fetched.get()), Names{"A"});

    auto closed = std::async(std::launch::async, [&] { return broker.Fetch(session, 60'000); });
    broker.CloseSession(session);
    EXPECT_THROW(closed.get(), KeyNotFoundException);
    EXPECT_THROW(broker.Subscribe(session, 1, "*"), KeyNotFoundException);

    const std::uint32_t next = broker.OpenSession("P");
    auto ended = std::async(std::launch::async, [&] { return broker.Fetch(next, 60'000); });
    broker.Close();
    EXPECT_THROW(ended.get(), KeyNotFoundException);
    EXPECT_FALSE(broker.Post(Make("A")));
    EXPECT_THROW(broker.OpenSession("P"), InvalidOperationException);
    EXPECT_THROW(broker.Publish({{}, {Make("A")}}), InvalidOperationException);
}

TEST(NotificationBroker, GivesThePlaceOfAnIdleSubscriberAway)
{
    NotificationLimits limits;
    limits.maxSubscribers = 2;
    NotificationBroker patient(limits);
    patient.OpenSession("P");
    patient.OpenSession("Q");
    EXPECT_THROW(patient.OpenSession("R"), InvalidOperationException);

    limits.subscriberIdleTime = std::chrono::milliseconds(0);
    NotificationBroker hasty(limits);
    const std::uint32_t first = hasty.OpenSession("P");
    const std::uint32_t second = hasty.OpenSession("Q");
    (void)hasty.Fetch(first, 0);
    const std::uint32_t third = hasty.OpenSession("R");
    EXPECT_NO_THROW((void)hasty.Fetch(first, 0));
    EXPECT_NO_THROW((void)hasty.Fetch(third, 0));
    EXPECT_THROW((void)hasty.Fetch(second, 0), KeyNotFoundException);
}

TEST(NotificationBroker, AProcessThatOpensSessionsWithoutEndLosesItsOwn)
{
    NotificationLimits limits;
    limits.maxSubscribers = 6;
    NotificationBroker broker(limits);
    const std::uint32_t first = broker.OpenSession("P");
    std::uint32_t last = first;
    for (int i = 0; i < 100; ++i)
    {
        last = broker.OpenSession("P");
    }
    EXPECT_THROW((void)broker.Fetch(first, 0), KeyNotFoundException);
    EXPECT_NO_THROW((void)broker.Fetch(last, 0));
    for (std::uint32_t i = 0; i < 1024; ++i)
    {
        broker.Subscribe(last, i, "A.b");
    }
    EXPECT_THROW(broker.Subscribe(last, 1024, "A.b"), InvalidOperationException);
    const std::uint32_t other = broker.OpenSession("P");
    EXPECT_NO_THROW(broker.Subscribe(other, 1024, "A.b"));
}

TEST(NotificationBroker, RefusesWhatNoSenderCouldHaveMade)
{
    NotificationBroker broker{{}};
    broker.StartDispatching();
    const std::uint32_t session = broker.OpenSession("P");
    broker.Subscribe(session, 1, "*");
    for (const auto& bad : {Make(""), Make("A*"), Make(String(256, 'n')), Make("A", String(maxNotificationSize, 'x'))})
    {
        EXPECT_THROW(broker.Publish({{}, {Make("Good"), bad}}), ArgumentException);
    }
    EXPECT_TRUE(broker.Fetch(session, 0).notifications.empty());
    for (const char* pattern : {"", "*A", "A*B", "**"})
    {
        EXPECT_THROW(broker.Subscribe(session, 2, pattern), ArgumentException) << pattern;
    }
}

} // namespace Vela::Testing
