#pragma once

#include <Vela/System/Rsc/Api.hpp>

#include <concepts>
#include <cstdint>
#include <type_traits>

namespace Vela::System::Rsc
{

/// What stands in front of every value on the wire. The numbers are part of the protocol.
enum class RscTypeCode : std::uint8_t
{
    Bool = 2,
    Int8 = 4,
    UInt8 = 5,
    Int16 = 6,
    UInt16 = 7,
    Int32 = 8,
    UInt32 = 9,
    Int64 = 10,
    UInt64 = 11,
    Float = 12,
    Double = 13,
    String = 19,
    Struct = 32,
    Array = 33,
};

template <typename T, typename... Others>
concept NoneOf = !(std::same_as<T, Others> || ...);

/// The arithmetic types that travel by themselves: bool, the integers of 8 to 64 bits, float and double. Characters do
/// not: whether `char` has a sign depends on the architecture.
template <typename T>
concept RscScalar = std::is_arithmetic_v<T> && NoneOf<T, long double, char, wchar_t, char8_t, char16_t, char32_t> &&
                    sizeof(T) <= 8;

/// The type code of a scalar; integers by size and sign, so that `long` is right on every architecture.
template <RscScalar T>
constexpr RscTypeCode GetTypeCode()
{
    if constexpr (std::same_as<T, bool>)
    {
        return RscTypeCode::Bool;
    }
    else if constexpr (std::is_floating_point_v<T>)
    {
        return sizeof(T) == 4 ? RscTypeCode::Float : RscTypeCode::Double;
    }
    else
    {
        constexpr int base = sizeof(T) == 1 ? 4 : sizeof(T) == 2 ? 6 : sizeof(T) == 4 ? 8 : 10;
        return static_cast<RscTypeCode>(base + (std::is_unsigned_v<T> ? 1 : 0));
    }
}

/// The one text encoding of the protocol: bytes, UTF-8 by convention.
inline constexpr std::uint8_t utf8Encoding = 2;

} // namespace Vela::System::Rsc
