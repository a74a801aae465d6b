#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Nm/NotificationPayload.hpp>

#include <cstdint>
#include <tuple>
#include <utility>

namespace Vela::Testing
{

enum class Valve : std::uint8_t
{
    Open = 1,
    Shut = 2,
};

inline const EnumDictionary<Valve>& GetEnumDictionary(Valve)
{
    static const EnumDictionary<Valve> dictionary{{Valve::Open, "Open"}, {Valve::Shut, "Shut"}};
    return dictionary;
}

enum class Mode : std::int16_t
{
    Reverse = -3,
};

/// One field of each kind.
class TankPayload : public System::Nm::NotificationPayload
{
public:
    static constexpr auto Fields()
    {
        using System::Nm::PayloadField;
        return std::tuple(PayloadField("isHigh", &TankPayload::isHigh), PayloadField("offset", &TankPayload::offset),
                          PayloadField("count", &TankPayload::count), PayloadField("level", &TankPayload::level),
                          PayloadField("name", &TankPayload::name), PayloadField("valve", &TankPayload::valve),
                          PayloadField("mode", &TankPayload::mode));
    }

    bool isHigh = false;
    std::int8_t offset = 0;
    std::uint64_t count = 0;
    double level = 0;
    String name;
    Valve valve = Valve::Open;
    Mode mode{};
};

/// A number and a text.
class NumberPayload : public System::Nm::NotificationPayload
{
public:
    NumberPayload() = default;

    explicit NumberPayload(int payloadNumber, String payloadText = {})
        : number(payloadNumber)
        , text(std::move(payloadText))
    {
    }

    static constexpr auto Fields()
    {
        return std::tuple(System::Nm::PayloadField("number", &NumberPayload::number),
                          System::Nm::PayloadField("text", &NumberPayload::text));
    }

    int number = 0;
    String text;
};

} // namespace Vela::Testing
