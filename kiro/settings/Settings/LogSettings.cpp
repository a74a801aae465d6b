#include <Settings/LogSettings.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Xml::XmlPath;
using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;

void LogSettings::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    reader.TryGetAttributeValue(logLevelXmlName, logLevel);
    XmlPath path;
    if (context.TryGetPath(reader, logDirXmlName, path) && !path.IsEmpty())
    {
        logDir = path;
        hasLogDir = true;
    }
    if (context.TryGetPath(reader, configFileXmlName, path) && !path.IsEmpty())
    {
        configFile = path;
    }
}

void LogSettings::ResolvePaths()
{
    logDir.Resolve();
    configFile.Resolve();
}

Commons::Diagnostics::LogLevel LogSettings::GetLogLevel() const noexcept
{
    return logLevel;
}

const String& LogSettings::GetLogDir() const noexcept
{
    return logDir.Get();
}

bool LogSettings::HasLogDir() const noexcept
{
    return hasLogDir;
}

const String& LogSettings::GetConfigFile() const noexcept
{
    return configFile.Get();
}

} // namespace Vela::System::Kiro::Internal::Settings
