#include "ReadDocument.hpp"
#include "XmlFile.hpp"

#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>

#include <utility>

namespace Vela::System::Commons::Xml
{

XmlConfigDocument::XmlConfigDocument(String rootName, IXmlSerializable& documentObject)
    : rootElementName(std::move(rootName))
    , object(documentObject)
{
}

void XmlConfigDocument::Load(const String& path, Io::TrustedFile use)
{
    const String fullPath = Io::Path::GetFullPath(path);
    LoadText(fullPath, XmlFile(fullPath, {}, use).Read());
}

void XmlConfigDocument::LoadText(const String& path, const String& text)
{
    XmlSerializationContext context(Io::Path::GetFullPath(path), false);
    const auto source = std::make_shared<const XmlSource>(XmlSource{context.GetFilePath(), {}});
    ReadDocument(source, text, rootElementName, object, context);
}

} // namespace Vela::System::Commons::Xml
