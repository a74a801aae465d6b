#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

namespace Vela::System::Commons::Xml
{

/// A document in one file, read into an object. It knows no includes.
class VELA_COMMONS_API XmlConfigDocument
{
public:
    /// The object must live as long as the document.
    XmlConfigDocument(String rootName, IXmlSerializable& documentObject);

    /// Reads the file and calls the object's ReadXml on its root element.
    /// @param path  relative to the working directory when it is relative
    /// @param use  decides what happens when others can change the file
    /// @throws XmlException when the file cannot be read, is malformed or has another root element
    /// @throws InvalidOperationException when others can change it and that is not accepted
    void Load(const String& path, Io::TrustedFile use = Io::TrustedFile::Document);
    /// The same for a text; `path` is the file that messages name and that paths in the text are relative to.
    void LoadText(const String& path, const String& text);

private:
    const String rootElementName;
    IXmlSerializable& object;
};

} // namespace Vela::System::Commons::Xml
