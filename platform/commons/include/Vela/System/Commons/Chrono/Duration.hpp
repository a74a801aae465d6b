#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <chrono>

namespace Vela::System::Commons::Chrono
{

/// A span of time in nanoseconds.
class VELA_COMMONS_API Duration
{
public:
    constexpr Duration() noexcept = default;

    constexpr explicit Duration(std::chrono::nanoseconds time) noexcept
        : nanoseconds(time)
    {
    }

    /// Reads a decimal number with one of the units ns, us, ms, s, min, h; a bare number is milliseconds. The whole
    /// text must be one duration; negative ones and those beyond 64 bits of nanoseconds are refused.
    static bool TryParse(const String& text, Duration& result);

    [[nodiscard]] constexpr std::chrono::milliseconds GetMilliseconds() const noexcept
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(nanoseconds);
    }

    [[nodiscard]] constexpr std::chrono::nanoseconds GetNanoseconds() const noexcept
    {
        return nanoseconds;
    }

private:
    std::chrono::nanoseconds nanoseconds{0};
};

} // namespace Vela::System::Commons::Chrono
