#include <Vela/BasicVersion.hpp>
#include <Vela/Exceptions.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace Vela
{

namespace
{

/// Where in a text the parts of a version stand.
struct Parts
{
    std::string_view name;
    std::array<std::string_view, 4> numbers;
    std::string_view suffix;
};

bool IsBlank(char character)
{
    return std::string_view(" \t\n\v\f\r").find(character) != std::string_view::npos;
}

bool IsLine(std::string_view text)
{
    return !text.empty() && text.find_first_of("\r\n") == std::string_view::npos;
}

/// Takes "1.2.3.4 suffix" apart; whatever stands behind the first digits may be left out.
std::optional<Parts> SplitNumbers(std::string_view text)
{
    Parts parts;
    std::size_t position = 0;
    for (std::string_view& number : parts.numbers)
    {
        if (position > 0 && text.substr(position).starts_with('.'))
        {
            ++position;
        }
        const std::size_t end = std::min(text.find_first_not_of("0123456789", position), text.size());
        number = text.substr(position, end - position);
        position = end;
    }
    if (parts.numbers.front().empty())
    {
        return std::nullopt;
    }
    if (position < text.size())
    {
        parts.suffix = text.substr(position + 1);
        if (!IsBlank(text[position]) || !IsLine(parts.suffix))
        {
            return std::nullopt;
        }
    }
    return parts;
}

/// Takes "name (1.2.3.4 suffix)" apart; the name is as long as it can be.
std::optional<Parts> SplitNamedNumbers(std::string_view text)
{
    if (!text.ends_with(')'))
    {
        return std::nullopt;
    }
    text.remove_suffix(1);
    for (std::size_t bracket = text.rfind('('); bracket != std::string_view::npos && bracket > 1;
         bracket = text.rfind('(', bracket - 1))
    {
        auto parts = SplitNumbers(text.substr(bracket + 1));
        const std::string_view name = text.substr(0, bracket - 1);
        if (parts && IsBlank(text[bracket - 1]) && IsLine(name))
        {
            parts->name = name;
            return parts;
        }
    }
    return std::nullopt;
}

template <typename Number>
bool TryReadNumber(std::string_view digits, Number& number)
{
    return digits.empty() || std::from_chars(digits.begin(), digits.end(), number).ec == std::errc();
}

bool TryRead(const std::optional<Parts>& parts, BasicVersion& result)
{
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    std::uint8_t patch = 0;
    std::uint32_t build = 0;
    if (!parts || !TryReadNumber(parts->numbers[0], major) || !TryReadNumber(parts->numbers[1], minor) ||
        !TryReadNumber(parts->numbers[2], patch) || !TryReadNumber(parts->numbers[3], build))
    {
        return false;
    }
    result = BasicVersion(String(parts->name), major, minor, patch, build, String(parts->suffix));
    return true;
}

} // namespace

BasicVersion::BasicVersion(std::uint8_t majorNumber, std::uint8_t minorNumber, std::uint8_t patchNumber,
                           std::uint32_t buildNumber, String versionSuffix)
    : BasicVersion(String(), majorNumber, minorNumber, patchNumber, buildNumber, std::move(versionSuffix))
{
}

BasicVersion::BasicVersion(String versionName, std::uint8_t majorNumber, std::uint8_t minorNumber,
                           std::uint8_t patchNumber, std::uint32_t buildNumber, String versionSuffix)
    : name(std::move(versionName))
    , major(majorNumber)
    , minor(minorNumber)
    , patch(patchNumber)
    , build(buildNumber)
    , suffix(std::move(versionSuffix))
{
}

const String& BasicVersion::GetName() const noexcept
{
    return name;
}

std::uint8_t BasicVersion::GetMajorVersion() const noexcept
{
    return major;
}

std::uint8_t BasicVersion::GetMinorVersion() const noexcept
{
    return minor;
}

std::uint8_t BasicVersion::GetPatchVersion() const noexcept
{
    return patch;
}

std::uint32_t BasicVersion::GetBuildVersion() const noexcept
{
    return build;
}

const String& BasicVersion::GetSuffix() const noexcept
{
    return suffix;
}

String BasicVersion::ToString() const
{
    String numbers = fmt::format("{0:d}.{1:d}.{2:d}.{3:d}", major, minor, patch, build);
    if (!suffix.empty())
    {
        numbers += " " + suffix;
    }
    return name.empty() ? numbers : fmt::format("{0} ({1})", name, numbers);
}

bool BasicVersion::TryParse(const String& text, BasicVersion& result)
{
    return TryRead(SplitNamedNumbers(text), result) || TryRead(SplitNumbers(text), result);
}

BasicVersion BasicVersion::Parse(const String& text)
{
    BasicVersion result;
    if (!TryParse(text, result))
    {
        throw Exception("Invalid format of version string: {0}", text);
    }
    return result;
}

} // namespace Vela
