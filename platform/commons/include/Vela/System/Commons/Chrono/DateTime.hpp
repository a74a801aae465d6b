#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <compare>
#include <cstdint>

namespace Vela::System::Commons::Chrono
{

/// A point in time in UTC, in microseconds since 1970-01-01T00:00:00Z (POSIX time, without leap seconds); 64 bits on
/// every architecture.
class VELA_COMMONS_API DateTime
{
public:
    constexpr DateTime() noexcept = default;

    constexpr explicit DateTime(std::int64_t microsecondsSinceEpoch) noexcept
        : microseconds(microsecondsSinceEpoch)
    {
    }

    static DateTime GetUtcNow() noexcept;

    [[nodiscard]] constexpr std::int64_t GetMicroseconds() const noexcept
    {
        return microseconds;
    }

    /// ISO 8601 with microseconds: "2024-08-01T12:34:56.123456Z".
    [[nodiscard]] String ToString() const;

    // NOLINTNEXTLINE(modernize-use-nullptr): the checker takes the zero that the compiler compares with for a pointer
    constexpr auto operator<=>(const DateTime&) const noexcept = default;

private:
    std::int64_t microseconds = 0;
};

} // namespace Vela::System::Commons::Chrono
