#include <Settings/FileTrustSettings.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Io::FileTrust;
using Commons::Io::TrustedFile;
using Commons::Io::TrustPolicy;

void FileTrustSettings::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    const std::pair<const char*, TrustedFile> uses[] = {
        {documentsXmlName, TrustedFile::Document},
        {securitySettingsXmlName, TrustedFile::SecuritySettings},
        {librariesXmlName, TrustedFile::Library},
        {executablesXmlName, TrustedFile::Executable},
        {runtimeDirectoryXmlName, TrustedFile::RuntimeDirectory},
    };
    for (const auto& [name, use] : uses)
    {
        TrustPolicy policy{};
        if (reader.TryGetAttributeValue(name, policy))
        {
            FileTrust::SetPolicy(use, policy);
        }
    }
    if (FileTrust::GetPolicy(TrustedFile::Document) == TrustPolicy::Refuse)
    {
        // When it was opened, that was not known yet.
        FileTrust::Require(TrustedFile::Document, context.GetFilePath());
    }
}

} // namespace Vela::System::Kiro::Internal::Settings
