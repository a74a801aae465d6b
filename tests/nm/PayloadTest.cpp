#include <Vela/Exceptions.hpp>
#include <Vela/System/Nm/Notification.hpp>
#include <Vela/System/NmPayload/Security/SecurityNotificationPayload.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <Service/NotificationMarshaling.hpp>
#include <TestPayload.hpp>
#include <gtest/gtest.h>

#include <memory>

namespace Vela::Testing
{

using namespace System::Nm;
using System::Commons::Chrono::DateTime;

namespace
{

TankPayload MakePayload()
{
    TankPayload payload;
    payload.isHigh = true;
    payload.offset = -128;
    payload.count = UINT64_MAX;
    payload.level = 0.1;
    payload.name = "Tank \"1\"\n{}";
    payload.valve = Valve::Shut;
    payload.mode = Mode::Reverse;
    return payload;
}

Notification MakeNotification()
{
    Notification notification;
    notification.name = "Plant.TankChanged";
    notification.sender = "Level Control";
    notification.process = "Tank1";
    notification.severity = Severity::Warning;
    notification.timeStamp = DateTime(1722515696123456);
    notification.payloadType = GetTypeName<TankPayload>();
    notification.fields = WritePayload(MakePayload());
    return notification;
}

} // namespace

TEST(Payload, ArrivesAsItWasSent)
{
    const Notification notification = MakeNotification();
    const auto received = notification.GetPayload<TankPayload>();
    const TankPayload sent = MakePayload();

    EXPECT_EQ(WritePayload(received), WritePayload(sent));
    EXPECT_EQ(received.offset, -128);
    EXPECT_EQ(received.count, UINT64_MAX);
    EXPECT_EQ(received.valve, Valve::Shut);
    EXPECT_EQ(received.mode, Mode::Reverse);
    EXPECT_EQ(received.GetTimeStamp(), notification.timeStamp);
}

TEST(Payload, IsReadableWithoutItsClass)
{
    EXPECT_EQ(MakeNotification().ToString(),
              "2024-08-01T12:34:56.123456Z Warning Plant.TankChanged [Level Control, Tank1]: isHigh=true, offset=-128, "
              "count=18446744073709551615, level=0.1, name=Tank \"1\"\n{}, valve=Shut, mode=-3");
}

TEST(Payload, OfAnotherClassOrFormIsRefused)
{
    Notification notification = MakeNotification();
    EXPECT_THROW((void)notification.GetPayload<NumberPayload>(), InvalidOperationException);

    const auto expectRefused = [&notification](const char* field, const NotificationValue& value)
    {
        Notification changed = notification;
        for (NotificationField& candidate : changed.fields)
        {
            if (candidate.name == field)
            {
                candidate.value = value;
            }
        }
        EXPECT_THROW((void)changed.GetPayload<TankPayload>(), Exception) << field;
    };
    expectRefused("offset", std::int64_t{128});
    expectRefused("offset", std::uint64_t{1});
    expectRefused("isHigh", std::int64_t{1});
    expectRefused("valve", String("Ajar"));
    expectRefused("mode", std::int64_t{40'000});

    notification.fields.erase(notification.fields.begin());
    EXPECT_THROW((void)notification.GetPayload<TankPayload>(), KeyNotFoundException);
}

TEST(Payload, TravelsThroughRemoting)
{
    using namespace Internal;
    NotificationDelivery sent;
    sent.misses = {{3, 17}};
    sent.notifications = {{std::make_shared<Notification>(MakeNotification()), {1, 3}}};
    System::Rsc::RemotingWriter writer(std::size_t{64} * 1024);
    System::Rsc::WriteRemote(writer, sent);

    NotificationDelivery received;
    System::Rsc::RemotingReader reader(writer.GetData());
    System::Rsc::ReadRemote(reader, received);

    EXPECT_NO_THROW(reader.ReadEnd());
    ASSERT_EQ(received.misses.size(), 1U);
    EXPECT_EQ(received.misses[0].subscription, 3U);
    EXPECT_EQ(received.misses[0].count, 17U);
    ASSERT_EQ(received.notifications.size(), 1U);
    EXPECT_EQ(*received.notifications[0].notification, MakeNotification());
    EXPECT_EQ(received.notifications[0].subscriptions, (std::vector<std::uint32_t>{1, 3}));
}

} // namespace Vela::Testing
