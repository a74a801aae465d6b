#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

/// What all sections of the settings document share that are read and never written.
class ReadOnlyXml : public Commons::Xml::IXmlSerializable
{
public:
    /// @throws NotImplementedException "WriteXml"
    void WriteXml(Commons::Xml::XmlWriter&, Commons::Xml::XmlSerializationContext&) final
    {
        throw NotImplementedException("WriteXml");
    }
};

} // namespace Vela::System::Kiro::Internal::Settings
