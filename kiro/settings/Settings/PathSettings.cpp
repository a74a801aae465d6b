#include <Settings/PathSettings.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Xml::XmlPath;
using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;

PathSettings::PathSettings(const char* defaultFilename, WithoutPath elementWithoutPath)
    : defaultPath(defaultFilename)
    , withoutPath(elementWithoutPath)
    , path(defaultFilename)
{
}

void PathSettings::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    if (!context.TryGetPath(reader, pathXmlName, path) && withoutPath == WithoutPath::ResetsToDefault)
    {
        path = XmlPath(defaultPath);
    }
}

void PathSettings::ResolvePaths()
{
    path.Resolve();
}

const String& PathSettings::GetPath() const noexcept
{
    return path.Get();
}

bool PathSettings::HasPath() const noexcept
{
    return !path.IsEmpty();
}

} // namespace Vela::System::Kiro::Internal::Settings
