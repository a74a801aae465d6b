#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Rsc/RscTypeCode.hpp>

#include <fmt/format.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <variant>

namespace Vela::System::Rsc
{

/// The integer type of a size and sign, so that `long` and `long long` are the same thing on the wire and in a variant.
template <RscScalar T>
struct CanonicalScalar
{
    using Type = T;
};

template <RscScalar T>
requires(std::integral<T> && !std::same_as<T, bool>) struct CanonicalScalar<T>
{
    template <typename Signed, typename Unsigned>
    using Choose = std::conditional_t<std::is_signed_v<T>, Signed, Unsigned>;
    using Type =
        std::conditional_t<sizeof(T) == 1, Choose<std::int8_t, std::uint8_t>,
                           std::conditional_t<sizeof(T) == 2, Choose<std::int16_t, std::uint16_t>,
                                              std::conditional_t<sizeof(T) == 4, Choose<std::int32_t, std::uint32_t>,
                                                                 Choose<std::int64_t, std::uint64_t>>>>;
};

/// A scalar or a text of at most N bytes, held by value together with its type; an empty text by default.
template <std::size_t N>
class RscVariant
{
public:
    using Value = std::variant<String, bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                               std::uint32_t, std::int64_t, std::uint64_t, float, double>;
    static constexpr std::size_t maxStringSize = N;

    RscVariant() = default;

    template <RscScalar T>
    RscVariant(T scalar)
        : value(static_cast<typename CanonicalScalar<T>::Type>(scalar))
    {
    }

    /// @throws ArgumentException "Cannot copy string: argument string length {} exceeds MaxStringSize {}"
    RscVariant(String text)
    {
        if (text.size() > N)
        {
            throw ArgumentException("Cannot copy string: argument string length {} exceeds MaxStringSize {}",
                                    text.size(), N);
        }
        value = std::move(text);
    }

    RscVariant(std::string_view text)
        : RscVariant(String(text))
    {
    }

    RscVariant(const char* text)
        : RscVariant(String(text))
    {
    }

    [[nodiscard]] const Value& GetValue() const noexcept
    {
        return value;
    }

    [[nodiscard]] RscTypeCode GetType() const
    {
        return std::visit(
            []<typename T>(const T&)
            {
                if constexpr (std::same_as<T, String>)
                {
                    return RscTypeCode::String;
                }
                else
                {
                    return GetTypeCode<T>();
                }
            },
            value);
    }

    /// The value as text: true or false, decimal numbers, the shortest text that reads back as the same float.
    [[nodiscard]] String ToString() const
    {
        return std::visit([](const auto& content) { return fmt::format("{}", content); }, value);
    }

    bool operator==(const RscVariant&) const = default;

private:
    Value value;
};

} // namespace Vela::System::Rsc
