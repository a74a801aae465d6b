#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <fmt/format.h>

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
