#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

#include <Core/NotificationLimits.hpp>

namespace Vela::System::Nm::Internal
{

/// The settings document of the notifications. Every element and attribute may be left out:
/// @code{.xml}
/// <NmSettingsDocument>
///   <Queue maxNotifications="1024" maxBytes="1048576"/>
///   <Subscribers maxCount="64" idleTime="60s"/>
/// </NmSettingsDocument>
/// @endcode
class NotificationLimitsDocument final : public Commons::Xml::IXmlSerializable
{
public:
    /// Reads a document; an empty path gives the defaults.
    /// @throws XmlException when the file cannot be read or is not valid
    static NotificationLimits Load(const String& path);

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// @throws NotImplementedException always: the settings are only read
    void WriteXml(Commons::Xml::XmlWriter& writer, Commons::Xml::XmlSerializationContext& context) override;

private:
    NotificationLimits limits;
};

} // namespace Vela::System::Nm::Internal
