#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <memory>

namespace Vela::System::Commons::Xml
{

/// Reads the text of one file into an object, by way of the root element, which must have the given name.
/// @throws XmlException
void ReadDocument(const std::shared_ptr<const XmlSource>& source, const String& text, const String& rootElementName,
                  IXmlSerializable& object, XmlSerializationContext& context);

} // namespace Vela::System::Commons::Xml
