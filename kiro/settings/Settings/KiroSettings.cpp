#include <Settings/KiroSettings.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;

void KiroSettings::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    const std::pair<const char*, Commons::Xml::IXmlSerializable&> sections[] = {
        {RscSettings::elementXmlName, rsc},
        {EnvironmentVariables::elementXmlName, environmentVariables},
        {LogSettings::elementXmlName, log},
        {ProcessSettings::elementXmlName, process},
        {SecuritySettings::elementXmlName, security},
        {NmSettings::elementXmlName, nm},
        {FileTrustSettings::elementXmlName, fileTrust},
    };
    String name;
    while (reader.ReadStartElement(name))
    {
        const auto* section = std::find_if(std::begin(sections), std::end(sections),
                                           [&](const auto& candidate) { return name == candidate.first; });
        if (section != std::end(sections))
        {
            section->second.ReadXml(reader, context);
        }
        else if (name == XmlSerializationContext::includesXmlName)
        {
            context.ReadIncludesElement(reader);
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

void KiroSettings::ResolveAndPublish(bool reset)
{
    environmentVariables.Publish(reset);
    rsc.ResolvePaths();
    log.ResolvePaths();
    security.ResolvePaths();
    nm.ResolvePaths();
}

const RscSettings& KiroSettings::GetRscSettings() const noexcept
{
    return rsc;
}

const LogSettings& KiroSettings::GetLogSettings() const noexcept
{
    return log;
}

const ProcessSettings& KiroSettings::GetProcessSettings() const noexcept
{
    return process;
}

ProcessSettings& KiroSettings::GetProcessSettings() noexcept
{
    return process;
}

const EnvironmentVariables& KiroSettings::GetEnvironmentVariables() const noexcept
{
    return environmentVariables;
}

EnvironmentVariables& KiroSettings::GetEnvironmentVariables() noexcept
{
    return environmentVariables;
}

const SecuritySettings& KiroSettings::GetSecuritySettings() const noexcept
{
    return security;
}

const NmSettings& KiroSettings::GetNmSettings() const noexcept
{
    return nm;
}

} // namespace Vela::System::Kiro::Internal::Settings
