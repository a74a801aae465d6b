#include "IncludedFiles.hpp"
#include "ReadDocument.hpp"
#include "XmlFile.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <set>
#include <utility>

namespace Vela::System::Commons::Xml
{

namespace
{

/// One load of a root file and its includes.
class DocumentLoad
{
public:
    DocumentLoad(const String& rootName, IXmlSerializable& documentObject)
        : rootElementName(rootName)
        , object(documentObject)
    {
    }

    void ReadFile(const String& path, const XmlPosition& includedFrom, int depth)
    {
        if (depth > MultiXmlConfigDocument::maxIncludeDepth)
        {
            throw XmlException::At(includedFrom.ToString(), fmt::format("Includes are nested deeper than {}.",
                                                                        MultiXmlConfigDocument::maxIncludeDepth));
        }
        const XmlFile file(path, includedFrom, Io::TrustedFile::Document);
        if (!filesRead.insert(file.GetIdentity()).second)
        {
            return;
        }
        XmlSerializationContext context(path, true);
        ReadDocument(std::make_shared<const XmlSource>(XmlSource{path, includedFrom}), file.Read(), rootElementName,
                     object, context);
        for (const auto& include : context.GetIncludes())
        {
            for (const String& includedPath : FindIncludedFiles(include, context.GetDirectory()))
            {
                ReadFile(includedPath, include.position, depth + 1);
            }
        }
    }

private:
    const String& rootElementName;
    IXmlSerializable& object;
    std::set<XmlFile::Identity> filesRead;
};

} // namespace

MultiXmlConfigDocument::MultiXmlConfigDocument(String rootName, IXmlSerializable& documentObject)
    : rootElementName(std::move(rootName))
    , object(documentObject)
{
}

void MultiXmlConfigDocument::Load(const String& path)
{
    Load(Configuration::ConfigurationSettings{{path}});
}

void MultiXmlConfigDocument::Load(const Configuration::ConfigurationSettings& settings)
{
    DocumentLoad load(rootElementName, object);
    for (const String& path : settings.files)
    {
        load.ReadFile(Io::Path::GetFullPath(path), {}, 0);
    }
}

} // namespace Vela::System::Commons::Xml
