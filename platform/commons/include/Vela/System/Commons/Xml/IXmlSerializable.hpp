#pragma once

#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons::Xml
{

class XmlReader;
class XmlSerializationContext;
class XmlWriter;

/// An object that reads itself from an XML element and writes itself as one.
class VELA_COMMONS_API IXmlSerializable
{
public:
    virtual ~IXmlSerializable() = default;

    /// Reads the element on which the reader stands: its attributes, then its children. The caller entered the element
    /// with ReadStartElement and leaves it with ReadEndElement.
    /// @throws XmlException
    virtual void ReadXml(XmlReader& reader, XmlSerializationContext& context) = 0;
    /// Writes attributes and children of the element that the caller has begun.
    /// @throws NotImplementedException by objects that are only read
    virtual void WriteXml(XmlWriter& writer, XmlSerializationContext& context) = 0;
};

} // namespace Vela::System::Commons::Xml
