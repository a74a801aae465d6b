#include <Config/Settings.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Sm::Config
{

Settings::Settings(String settingsPath)
    : path(std::move(settingsPath))
{
}

void Settings::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    context.GetResolvedPath(reader, pathXmlName, path);
}

bool Settings::Equals(const Settings& other) const
{
    return path == other.path;
}

const String& Settings::GetPath() const noexcept
{
    return path;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
