#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Nm/Api.hpp>

#include <concepts>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace Vela::System::Nm
{

/// What a field of a payload holds while it travels.
using NotificationValue = std::variant<bool, std::int64_t, std::uint64_t, double, String>;

/// One named value of a payload. A receiver that does not know the payload's class can still show it.
struct NotificationField
{
    String name;
    NotificationValue value;

    bool operator==(const NotificationField&) const = default;
};

/// Base of what a notification carries: its time stamp. A payload class lists its fields once; how they travel and how
/// they print follows from the list.
/// @code
/// class LevelPayload : public NotificationPayload
/// {
/// public:
///     LevelPayload() = default;
///     explicit LevelPayload(double levelInMetres) : level(levelInMetres) {}
///     [[nodiscard]] double GetLevel() const noexcept { return level; }
///
///     static constexpr auto Fields()
///     {
///         return std::tuple(PayloadField("level", &LevelPayload::level));
///     }
///
/// private:
///     double level = 0;
/// };
/// @endcode
/// A field is a bool, an integer, a floating-point number, a String, or an enumeration (by name when it has a
/// dictionary, by number otherwise). The class must have a default constructor, which receivers use.
class VELA_NM_API NotificationPayload
{
public:
    /// When the reported thing happened, in UTC. A payload without time stamp (the epoch) gets the time of sending.
    void SetTimeStamp(Commons::Chrono::DateTime time) noexcept
    {
        timeStamp = time;
    }

    [[nodiscard]] Commons::Chrono::DateTime GetTimeStamp() const noexcept
    {
        return timeStamp;
    }

private:
    Commons::Chrono::DateTime timeStamp;
};

/// An entry of a payload's field list.
template <typename Class, typename Value>
struct PayloadField
{
    constexpr PayloadField(const char* fieldName, Value Class::*fieldMember)
        : name(fieldName)
        , member(fieldMember)
    {
    }

    const char* name;
    Value Class::*member;
};

template <typename T>
concept PayloadClass = std::derived_from<T, NotificationPayload> && std::default_initializable<T> && requires
{
    T::Fields();
};

namespace Internal
{

/// The field of that name.
/// @throws KeyNotFoundException when the payload has none
VELA_NM_API const NotificationValue& FindField(const std::vector<NotificationField>& fields, const char* name);
[[noreturn]] VELA_NM_API void ThrowUnfitValue(const char* fieldName);

template <typename T>
NotificationValue ToValue(const T& value)
{
    if constexpr (EnumWithDictionary<T>)
    {
        return GetEnumString(value);
    }
    else if constexpr (std::is_enum_v<T>)
    {
        return ToValue(static_cast<std::underlying_type_t<T>>(value));
    }
    else if constexpr (std::same_as<T, bool> || std::same_as<T, String>)
    {
        return value;
    }
    else if constexpr (std::floating_point<T>)
    {
        return static_cast<double>(value);
    }
    else if constexpr (std::unsigned_integral<T>)
    {
        return static_cast<std::uint64_t>(value);
    }
    else
    {
        static_assert(std::signed_integral<T>, "a payload field has a type that cannot travel");
        return static_cast<std::int64_t>(value);
    }
}

/// The alternative of a value that a field's type asks for.
template <typename Stored>
const Stored& GetStored(const char* fieldName, const NotificationValue& value)
{
    const Stored* stored = std::get_if<Stored>(&value);
    if (stored == nullptr)
    {
        ThrowUnfitValue(fieldName);
    }
    return *stored;
}

template <typename T>
void FromValue(const char* fieldName, const NotificationValue& value, T& result)
{
    if constexpr (EnumWithDictionary<T>)
    {
        result = GetEnumValue<T>(GetStored<String>(fieldName, value));
    }
    else if constexpr (std::is_enum_v<T>)
    {
        std::underlying_type_t<T> number{};
        FromValue(fieldName, value, number);
        result = static_cast<T>(number);
    }
    else if constexpr (std::same_as<T, bool> || std::same_as<T, String>)
    {
        result = GetStored<T>(fieldName, value);
    }
    else if constexpr (std::floating_point<T>)
    {
        result = static_cast<T>(GetStored<double>(fieldName, value));
    }
    else
    {
        using Stored = std::conditional_t<std::unsigned_integral<T>, std::uint64_t, std::int64_t>;
        const Stored stored = GetStored<Stored>(fieldName, value);
        if (!std::in_range<T>(stored))
        {
            ThrowUnfitValue(fieldName);
        }
        result = static_cast<T>(stored);
    }
}

} // namespace Internal

/// A payload's fields as they travel, in the order of its list.
/// @throws Exception when an enumeration with a dictionary holds a value without a name
template <PayloadClass T>
std::vector<NotificationField> WritePayload(const T& payload)
{
    return std::apply(
        [&payload](const auto&... field)
        {
            // One by one: the compiler does not clean up a list that fails half-way.
            std::vector<NotificationField> fields;
            fields.reserve(sizeof...(field));
            (fields.push_back({field.name, Internal::ToValue(payload.*field.member)}), ...);
            return fields;
        },
        T::Fields());
}

/// Fills a payload from fields that arrived; fields that its class does not know are skipped.
/// @throws KeyNotFoundException when a field is missing
/// @throws InvalidOperationException when a value does not fit the field's type
/// @throws Exception when an enumeration has no value of the name that arrived
template <PayloadClass T>
T ReadPayload(const std::vector<NotificationField>& fields)
{
    T payload;
    std::apply(
        [&payload, &fields](const auto&... field)
        { (Internal::FromValue(field.name, Internal::FindField(fields, field.name), payload.*field.member), ...); },
        T::Fields());
    return payload;
}

} // namespace Vela::System::Nm
