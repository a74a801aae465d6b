#include <Vela/AppDomain.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Nm/NotificationManager.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <Inbox.hpp>
#include <TemporaryDirectory.hpp>
#include <TestPayload.hpp>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <optional>

namespace Vela::Testing
{

using namespace System::Nm;
using System::Commons::Chrono::DateTime;
using System::Commons::Diagnostics::LogLevel;
using System::Commons::Diagnostics::LogManager;

namespace
{

using Items = std::vector<std::int64_t>;
using Registration = NotificationRegistration<NumberPayload>;

/// A process with a broker, without remoting.
class NotificationsOfAProcess : public ::testing::Test
{
protected:
    NotificationsOfAProcess()
    {
        AppDomain::CreateInstance();
    }

    ~NotificationsOfAProcess() override
    {
        NotificationManagerSetup::Dispose();
        LogManager::DisposeInstance();
    }

    static void Setup(const String& settingsPath = {})
    {
        NotificationManagerSetup::Setup("TestProcess", true, settingsPath);
        NotificationManagerSetup::StartDispatching();
    }

    static bool Send(int number, const String& name = "A")
    {
        return Registration(name, "Test", Severity::Information).Send(NumberPayload(number));
    }

    TemporaryDirectory directory;
    Inbox inbox;
};

} // namespace

TEST_F(NotificationsOfAProcess, AreReceivedInOrderWithAllThatWasSent)
{
    Setup();
    EXPECT_TRUE(AppDomainSingleton<NotificationManager>::GetInstance().HasBroker());
    std::promise<Notification> first;
    NotificationSubscription one("Plant.Level", [&first](const Notification& received) { first.set_value(received); });
    NotificationSubscription all("Plant.*", inbox.Receive());

    const DateTime before = DateTime::GetUtcNow();
    const Registration level("Plant.Level", "Level Control", Severity::Warning);
    const Registration other("Plant.Other", "Level Control", Severity::Information);
    EXPECT_TRUE(level.Send(NumberPayload(1, "text")));
    NumberPayload stamped(2);
    stamped.SetTimeStamp(DateTime(1));
    EXPECT_TRUE(other.Send(stamped));
    for (int i = 3; i <= 500; ++i)
    {
        EXPECT_TRUE(other.Send(NumberPayload(i)));
    }

    const Notification received = first.get_future().get();
    EXPECT_EQ(received.name, "Plant.Level");
    EXPECT_EQ(received.sender, "Level Control");
    EXPECT_EQ(received.process, "TestProcess");
    EXPECT_EQ(received.severity, Severity::Warning);
    EXPECT_EQ(received.GetPayload<NumberPayload>().text, "text");
    EXPECT_GE(received.timeStamp, before);
    EXPECT_LE(received.timeStamp, DateTime::GetUtcNow());

    const Items items = inbox.Await(500);
    ASSERT_EQ(items.size(), 500U);
    EXPECT_TRUE(std::is_sorted(items.begin(), items.end()));

    std::promise<DateTime> timeStamp;
    NotificationSubscription late("Plant.Other",
                                  [&timeStamp](const Notification& got) { timeStamp.set_value(got.timeStamp); });
    other.Send(stamped);
    EXPECT_EQ(timeStamp.get_future().get(), DateTime(1));
}

TEST_F(NotificationsOfAProcess, NeverMakeTheSenderWaitForASlowSubscriber)
{
    Setup(directory.Write("Nm.settings", "<NmSettingsDocument><Queue maxNotifications=\"4\" maxBytes=\"100000\"/>"
                                         "<Subscribers maxCount=\"1\" idleTime=\"1s\"/></NmSettingsDocument>"));
    Gate isInside;
    Gate mayGo;
    const auto receive = inbox.Receive();
    NotificationSubscription slow(
        "A",
        [&](const Notification& notification)
        {
            isInside.Open();
            mayGo.Await();
            receive(notification);
        },
        inbox.Miss());
    Send(1);
    ASSERT_TRUE(isInside.Await());
    for (int i = 2; i <= 20; ++i)
    {
        EXPECT_TRUE(Send(i));
    }
    mayGo.Open();
    EXPECT_EQ(inbox.Await(6), (Items{1, -15, 17, 18, 19, 20}));
}

TEST_F(NotificationsOfAProcess, GoOnAfterACallbackThatThrows)
{
    LogManager::CreateInstance(LogLevel::Info, directory / "test.log");
    Setup();
    const auto receive = inbox.Receive();
    NotificationSubscription subscription("A",
                                          [&receive](const Notification& notification)
                                          {
                                              receive(notification);
                                              switch (notification.GetPayload<NumberPayload>().number)
                                              {
                                              case 1:
                                                  throw NotExistException("platform text");
                                              case 2:
                                                  throw std::runtime_error("standard text");
                                              case 3:
                                                  throw 3;
                                              default:
                                                  break;
                                              }
                                          });
    for (const int number : {1, 2, 3, 4})
    {
        Send(number);
    }
    EXPECT_EQ(inbox.Await(4), (Items{1, 2, 3, 4}));
    const std::string text = directory.Read("test.log");
    EXPECT_NE(text.find("callback of subscription 'A': NotExistException: platform text"), std::string::npos) << text;
    EXPECT_NE(text.find("callback of subscription 'A': standard text"), std::string::npos) << text;
    EXPECT_NE(text.find("Unspecified exception occurs in the callback of subscription 'A'"), std::string::npos) << text;
}

TEST_F(NotificationsOfAProcess, LetACallbackSendSubscribeAndUnsubscribe)
{
    Setup();
    std::optional<NotificationSubscription> once;
    std::optional<NotificationSubscription> later;
    const auto receive = inbox.Receive();
    once.emplace("A",
                 [&](const Notification& notification)
                 {
                     receive(notification);
                     later.emplace("B", receive);
                     once->Dispose();
                     Send(2, "B");
                     EXPECT_THROW(NotificationManagerSetup::Dispose(), InvalidOperationException);
                 });
    Send(1);
    EXPECT_EQ(inbox.Await(2), (Items{1, 2}));
    Send(3);
    Send(4, "B");
    EXPECT_EQ(inbox.Await(3), (Items{1, 2, 4}));

    // The refused end has left everything for the next attempt.
    const Registration kept("C", "Test", Severity::Information);
    EXPECT_TRUE(kept.Send(NumberPayload(5)));
    NotificationManagerSetup::Dispose();
    EXPECT_FALSE(kept.Send(NumberPayload(6)));
}

TEST_F(NotificationsOfAProcess, LeaveNothingOfACallbackBehindOnceItIsUnsubscribed)
{
    Setup();
    Gate isInside;
    Gate mayGo;
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> remains = captured;
    NotificationSubscription subscription("A",
                                          [&, captured = std::move(captured)](const Notification&)
                                          {
                                              isInside.Open();
                                              mayGo.Await();
                                              *captured = 1;
                                          });
    Send(1);
    ASSERT_TRUE(isInside.Await());
    auto disposed = std::async(std::launch::async,
                               [&]
                               {
                                   subscription.Dispose();
                                   return remains.expired();
                               });
    EXPECT_EQ(disposed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout)
        << "the callback still runs";
    mayGo.Open();
    EXPECT_TRUE(disposed.get());
}

TEST_F(NotificationsOfAProcess, AreRegisteredOncePerName)
{
    Setup();
    Registration registration("A", "Test", Severity::Information);
    EXPECT_THROW(Registration("A", "Other", Severity::Error), InvalidOperationException);
    EXPECT_TRUE(registration.Send(NumberPayload(1)));
    registration.Dispose();
    registration.Dispose();
    EXPECT_THROW(registration.Send(NumberPayload(1)), InvalidOperationException);
    EXPECT_NO_THROW(Registration("A", "Other", Severity::Error));

    for (const String& name : {String(), String("A*"), String(256, 'n')})
    {
        EXPECT_THROW(Registration(name, "Test", Severity::Information), ArgumentException) << name;
    }
    EXPECT_THROW(Registration("B", "", Severity::Information), ArgumentException);
    const Registration large("B", "Test", Severity::Information);
    EXPECT_THROW(large.Send(NumberPayload(1, String(70'000, 'x'))), ArgumentException);
    EXPECT_THROW(NotificationSubscription("A", {}), ArgumentException);
    EXPECT_THROW(NotificationSubscription("*A", inbox.Receive()), ArgumentException);
}

TEST_F(NotificationsOfAProcess, OutliveTheirManagerHarmlessly)
{
    Setup();
    EXPECT_THROW(Setup(), InvalidOperationException);
    Registration registration("A", "Test", Severity::Information);
    NotificationSubscription subscription("*", inbox.Receive());
    NotificationManagerSetup::Dispose();
    NotificationManagerSetup::Dispose();
    EXPECT_EQ(AppDomainSingleton<NotificationManager>::TryGetInstance(), nullptr);
    EXPECT_FALSE(registration.Send(NumberPayload(1)));

    Setup();
    Registration next("A", "Test", Severity::Information);
    NotificationSubscription nextSubscription("*", inbox.Receive());
    registration.Dispose();
    subscription.Dispose();
    EXPECT_THROW(Registration("A", "Test", Severity::Information), InvalidOperationException) << "next has it";
    EXPECT_TRUE(next.Send(NumberPayload(2)));
    EXPECT_EQ(inbox.Await(1), Items{2});
}

TEST_F(NotificationsOfAProcess, WithoutAManagerAreNotSent)
{
    NotificationManagerSetup::StartDispatching();
    EXPECT_FALSE(Send(1));
    try
    {
        NotificationSubscription subscription("A", inbox.Receive());
        FAIL() << "subscribed";
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(),
                  "AppDomain Singleton instance of type 'Vela::System::Nm::NotificationManager' "
                  "was not created yet!");
    }
}

TEST_F(NotificationsOfAProcess, AreNotSetUpWithSettingsThatAreWrong)
{
    for (const char* text : {"<NmSettingsDocument><Queue maxNotifications=\"0\"/></NmSettingsDocument>",
                             "<NmSettingsDocument><Queue maxBytes=\"-1\"/></NmSettingsDocument>",
                             "<NmSettingsDocument><Subscribers idleTime=\"long\"/></NmSettingsDocument>", "<Other/>"})
    {
        EXPECT_THROW(Setup(directory.Write("Nm.settings", text)), XmlException) << text;
    }
    EXPECT_THROW(Setup(directory / "missing.settings"), XmlException);
    EXPECT_EQ(AppDomainSingleton<NotificationManager>::TryGetInstance(), nullptr);
}

} // namespace Vela::Testing
