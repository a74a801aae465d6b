#include "ReadDocument.hpp"

#include <Vela/System/Commons/Xml/XmlReader.hpp>

namespace Vela::System::Commons::Xml
{

void ReadDocument(const std::shared_ptr<const XmlSource>& source, const String& text, const String& rootElementName,
                  IXmlSerializable& object, XmlSerializationContext& context)
{
    XmlReader reader(source, text);
    String name;
    reader.ReadStartElement(name);
    if (name != rootElementName)
    {
        reader.Raise(Diagnostics::FindingCode::WrongRootElement,
                     reader.Error("The root element is '{0}', but '{1}' is expected.", name, rootElementName));
        return;
    }
    object.ReadXml(reader, context);
    reader.ReadEndElement();
}

} // namespace Vela::System::Commons::Xml
