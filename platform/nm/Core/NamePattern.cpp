#include <Vela/Exceptions.hpp>

#include <Core/NamePattern.hpp>

#include <cstddef>
#include <string_view>
#include <utility>

namespace Vela::System::Nm::Internal
{

namespace
{

constexpr std::size_t maxTextSize = 255;
constexpr char wildcard = '*';

} // namespace

void CheckText(const char* parameterName, const String& text)
{
    if (text.empty() || text.size() > maxTextSize)
    {
        throw ArgumentException::ForParameter(
            parameterName, fmt::format("A text of 1 to {} bytes is needed, not one of {}.", maxTextSize, text.size()));
    }
}

void CheckNotificationName(const String& name)
{
    CheckText("name", name);
    if (name.find(wildcard) != String::npos)
    {
        throw ArgumentException::ForParameter("name",
                                              fmt::format("The notification name '{}' contains '{}'.", name, wildcard));
    }
}

NamePattern::NamePattern(String patternText)
    : text(std::move(patternText))
{
    CheckText("pattern", text);
    if (text.find(wildcard) < text.size() - 1)
    {
        throw ArgumentException::ForParameter(
            "pattern", fmt::format("In the pattern '{}' the '{}' does not stand at the end.", text, wildcard));
    }
}

bool NamePattern::Matches(const String& name) const noexcept
{
    std::string_view prefix = text;
    if (prefix.back() != wildcard)
    {
        return name == prefix;
    }
    prefix.remove_suffix(1);
    return name.starts_with(prefix);
}

const String& NamePattern::GetText() const noexcept
{
    return text;
}

} // namespace Vela::System::Nm::Internal
