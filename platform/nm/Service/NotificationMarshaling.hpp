#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <Service/NotificationMessages.hpp>

#include <cstdint>
#include <memory>
#include <tuple>
#include <utility>
#include <variant>

namespace Vela::System::Rsc
{

template <>
struct Marshaler<Commons::Chrono::DateTime>
{
    static void Write(RemotingWriter& writer, Commons::Chrono::DateTime time)
    {
        WriteRemote(writer, time.GetMicroseconds());
    }

    static void Read(RemotingReader& reader, Commons::Chrono::DateTime& time)
    {
        time = Commons::Chrono::DateTime(reader.ReadValue<std::int64_t>());
    }
};

/// A value travels behind the tag of its own type, which tells the receiver what to make of it.
template <>
struct Marshaler<Nm::NotificationValue>
{
    static void Write(RemotingWriter& writer, const Nm::NotificationValue& value)
    {
        std::visit([&writer](const auto& stored) { WriteRemote(writer, stored); }, value);
    }

    static void Read(RemotingReader& reader, Nm::NotificationValue& value)
    {
        switch (const RscTypeCode code = reader.ReadTag())
        {
        case RscTypeCode::Bool:
            value = reader.ReadRaw<bool>();
            return;
        case RscTypeCode::Int64:
            value = reader.ReadRaw<std::int64_t>();
            return;
        case RscTypeCode::UInt64:
            value = reader.ReadRaw<std::uint64_t>();
            return;
        case RscTypeCode::Double:
            value = reader.ReadRaw<double>();
            return;
        case RscTypeCode::String:
            value = reader.ReadStringInternal(Marshaler<String>::capacity, utf8Encoding, false);
            return;
        default:
            throw RscException("Malformed message: type code {} is no value of a notification.",
                               static_cast<int>(code));
        }
    }
};

template <>
struct StructFields<Nm::NotificationField>
{
    static constexpr auto fields = std::tuple(&Nm::NotificationField::name, &Nm::NotificationField::value);
};

template <>
struct StructFields<Nm::Notification>
{
    static constexpr auto fields = std::tuple(
        &Nm::Notification::name, &Nm::Notification::sender, &Nm::Notification::process, &Nm::Notification::severity,
        &Nm::Notification::timeStamp, &Nm::Notification::payloadType, &Nm::Notification::fields);
};

template <>
struct Marshaler<Nm::Internal::NotificationPointer>
{
    static void Write(RemotingWriter& writer, const Nm::Internal::NotificationPointer& notification)
    {
        WriteRemote(writer, *notification);
    }

    static void Read(RemotingReader& reader, Nm::Internal::NotificationPointer& notification)
    {
        auto received = std::make_shared<Nm::Notification>();
        ReadRemote(reader, *received);
        notification = std::move(received);
    }
};

template <>
struct StructFields<Nm::Internal::NotificationLoss>
{
    static constexpr auto fields =
        std::tuple(&Nm::Internal::NotificationLoss::name, &Nm::Internal::NotificationLoss::count);
};

template <>
struct StructFields<Nm::Internal::NotificationBatch>
{
    static constexpr auto fields =
        std::tuple(&Nm::Internal::NotificationBatch::losses, &Nm::Internal::NotificationBatch::notifications);
};

template <>
struct StructFields<Nm::Internal::SubscriptionMisses>
{
    static constexpr auto fields =
        std::tuple(&Nm::Internal::SubscriptionMisses::subscription, &Nm::Internal::SubscriptionMisses::count);
};

template <>
struct StructFields<Nm::Internal::DeliveredNotification>
{
    static constexpr auto fields = std::tuple(&Nm::Internal::DeliveredNotification::notification,
                                              &Nm::Internal::DeliveredNotification::subscriptions);
};

template <>
struct StructFields<Nm::Internal::NotificationDelivery>
{
    static constexpr auto fields =
        std::tuple(&Nm::Internal::NotificationDelivery::misses, &Nm::Internal::NotificationDelivery::notifications);
};

} // namespace Vela::System::Rsc
