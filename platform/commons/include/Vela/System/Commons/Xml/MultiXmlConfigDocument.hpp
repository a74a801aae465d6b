#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Configuration/ConfigurationSettings.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

namespace Vela::System::Commons::Xml
{

/// A document in a root file and the files that it includes, all read into one object.
///
/// The root file is read first, then its includes in the order in which they stand, depth first. An include is a path
/// relative to its file, in which placeholders are resolved; with shell wildcards it names all files that match, in
/// byte order, or none. A file is read once however often and by whatever path it is named, so a loop ends. A missing
/// file is an error, unless it is named by a wildcard.
class VELA_COMMONS_API MultiXmlConfigDocument
{
public:
    /// Files nested deeper are refused.
    static constexpr int maxIncludeDepth = 100;

    /// The object must live as long as the document.
    MultiXmlConfigDocument(String rootName, IXmlSerializable& documentObject);

    /// Reads the file and its includes, calling the object's ReadXml on the root element of each.
    /// @param path  relative to the working directory when it is relative
    /// @throws XmlException when a file cannot be read, is malformed or has another root element
    void Load(const String& path);
    /// The same for several root files, in their order; a file is read once over all of them.
    void Load(const Configuration::ConfigurationSettings& settings);

private:
    const String rootElementName;
    IXmlSerializable& object;
};

} // namespace Vela::System::Commons::Xml
