#pragma once

#include <Settings/ReadOnlyXml.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

/// What happens when others can change the files that the process relies on. It counts as soon as it is read: for the
/// file in which it stands, and for all that are read later.
class FileTrustSettings : public ReadOnlyXml
{
public:
    static constexpr const char* elementXmlName = "FileTrust";
    static constexpr const char* documentsXmlName = "documents";
    static constexpr const char* securitySettingsXmlName = "securitySettings";
    static constexpr const char* librariesXmlName = "libraries";
    static constexpr const char* executablesXmlName = "executables";
    static constexpr const char* runtimeDirectoryXmlName = "runtimeDirectory";

    /// @throws InvalidOperationException when others can change this very file and that is to be refused
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
};

} // namespace Vela::System::Kiro::Internal::Settings
