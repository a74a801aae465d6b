#include <Vela/System/Commons/Chrono/Duration.hpp>

#include <array>
#include <cstdint>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

namespace Vela::System::Commons::Chrono
{

namespace
{

constexpr std::int64_t maximum = std::numeric_limits<std::int64_t>::max();

constexpr std::array<std::pair<std::string_view, std::int64_t>, 7> units{{
    {"", 1'000'000},
    {"ns", 1},
    {"us", 1'000},
    {"ms", 1'000'000},
    {"s", 1'000'000'000},
    {"min", 60'000'000'000},
    {"h", 3'600'000'000'000},
}};

std::string_view TakeDigits(std::string_view& text)
{
    const auto end = std::min(text.find_first_not_of("0123456789"), text.size());
    const auto digits = text.substr(0, end);
    text.remove_prefix(end);
    return digits;
}

/// Nanoseconds of whole units; false when they do not fit.
bool Multiply(std::string_view digits, std::int64_t unit, std::int64_t& result)
{
    std::int64_t number = 0;
    for (const char digit : digits)
    {
        const std::int64_t value = digit - '0';
        if (number > (maximum / unit - value) / 10)
        {
            return false;
        }
        number = number * 10 + value;
    }
    result = number * unit;
    return true;
}

/// Nanoseconds of the digits behind the point, from the last to the first, so that no step needs more than 64 bits.
std::int64_t MultiplyFraction(std::string_view digits, std::int64_t unit)
{
    return std::accumulate(digits.rbegin(), digits.rend(), std::int64_t{0},
                           [unit](std::int64_t sum, char digit) { return (sum + (digit - '0') * unit) / 10; });
}

} // namespace

bool Duration::TryParse(const String& text, Duration& result)
{
    std::string_view rest = text;
    const auto whole = TakeDigits(rest);
    std::string_view fraction;
    const bool hasFraction = rest.starts_with('.');
    if (hasFraction)
    {
        rest.remove_prefix(1);
        fraction = TakeDigits(rest);
    }
    if (whole.empty() || (hasFraction && fraction.empty()))
    {
        return false;
    }
    for (const auto& [name, unit] : units)
    {
        std::int64_t nanosecondsOfWhole = 0;
        if (name != rest)
        {
            continue;
        }
        if (!Multiply(whole, unit, nanosecondsOfWhole))
        {
            return false;
        }
        const std::int64_t nanosecondsOfFraction = MultiplyFraction(fraction, unit);
        if (nanosecondsOfWhole > maximum - nanosecondsOfFraction)
        {
            return false;
        }
        result = Duration(std::chrono::nanoseconds(nanosecondsOfWhole + nanosecondsOfFraction));
        return true;
    }
    return false;
}

} // namespace Vela::System::Commons::Chrono
