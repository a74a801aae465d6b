#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <fmt/format.h>

#include <charconv>
#include <utility>

namespace Vela::System::Commons::Xml
{

XmlPosition::XmlPosition(std::shared_ptr<const XmlSource> positionSource, unsigned long positionLine)
    : source(std::move(positionSource))
    , line(positionLine)
{
}

String XmlPosition::ToString() const
{
    String text;
    for (const XmlPosition* position = this; position->source != nullptr; position = &position->source->includedFrom)
    {
        text += fmt::format("{}{}:{}", text.empty() ? "" : ", included from ", position->source->path, position->line);
    }
    return text;
}

XmlPosition XmlPosition::Parse(const String& text)
{
    constexpr std::string_view link = ", included from ";
    const std::size_t end = text.find(link);
    const std::size_t colon = text.rfind(':', end);
    unsigned long number = 0;
    const char* digits = text.data() + (colon == String::npos ? 0 : colon + 1);
    const char* digitsEnd = text.data() + std::min(end, text.size());
    const auto [numberEnd, error] = std::from_chars(digits, digitsEnd, number);
    if (colon == String::npos || colon == 0 || error != std::errc() || numberEnd != digitsEnd)
    {
        return {};
    }
    XmlPosition includedFrom = end == String::npos ? XmlPosition() : Parse(text.substr(end + link.size()));
    return {std::make_shared<const XmlSource>(XmlSource{text.substr(0, colon), std::move(includedFrom)}), number};
}

const XmlPosition& XmlPosition::GetIncludedFrom() const noexcept
{
    static const XmlPosition nowhere;
    return source == nullptr ? nowhere : source->includedFrom;
}

const String& XmlPosition::GetFile() const noexcept
{
    static const String nowhere;
    return source == nullptr ? nowhere : source->path;
}

unsigned long XmlPosition::GetLine() const noexcept
{
    return line;
}

} // namespace Vela::System::Commons::Xml
