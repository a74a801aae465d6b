#include <Vela/BasicVersion.hpp>
#include <Vela/Exceptions.hpp>

#include <fmt/format.h>

#include <charconv>
#include <regex>
#include <utility>

namespace Vela
{

namespace
{

// Backtracking over a long run of digits takes time with the third power of its length.
constexpr std::size_t maxTextLength = 128;

template <typename Number>
bool TryReadNumber(const std::ssub_match& group, Number& number)
{
    if (group.length() == 0)
    {
        number = 0;
        return true;
    }
    const String digits = group.str();
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size();
}

bool TryMatch(const String& text, std::smatch& match, const std::regex& expression)
{
    return text.size() <= maxTextLength && std::regex_match(text, match, expression);
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
    return TryParseFullVersion(text, result) || TryParseInternalVersion(text, result);
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

template <typename Match>
bool BasicVersion::TryReadNumbers(const Match& match, std::size_t group, BasicVersion& result)
{
    BasicVersion version;
    if (!TryReadNumber(match[group], version.major) || !TryReadNumber(match[group + 1], version.minor) ||
        !TryReadNumber(match[group + 2], version.patch) || !TryReadNumber(match[group + 3], version.build))
    {
        return false;
    }
    version.suffix = match[group + 4];
    result = std::move(version);
    return true;
}

bool BasicVersion::TryParseFullVersion(const String& text, BasicVersion& result)
{
    static const std::regex expression(R"((.+)(?:\s\()(?:(\d+)(?:\.)?(\d*)(?:\.)?(\d*)(?:\.)?(\d*)(?:\s(.+))?)(?:\)))");
    std::smatch match;
    if (!TryMatch(text, match, expression) || !TryReadNumbers(match, 2, result))
    {
        return false;
    }
    result.name = match[1];
    return true;
}

bool BasicVersion::TryParseInternalVersion(const String& text, BasicVersion& result)
{
    static const std::regex expression(R"((\d+)(?:\.)?(\d*)(?:\.)?(\d*)(?:\.)?(\d*)(?:\s(.+))?)");
    std::smatch match;
    return TryMatch(text, match, expression) && TryReadNumbers(match, 1, result);
}

} // namespace Vela
