#include "IncludedFiles.hpp"
#include "ReadDocument.hpp"
#include "XmlFile.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <set>
#include <utility>

namespace Vela::System::Commons::Xml
{

using Diagnostics::FindingCode;

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
            Diagnostics::Raise(
                FindingCode::InvalidInclude, includedFrom,
                XmlException::At(includedFrom.ToString(), fmt::format("Includes are nested deeper than {}.",
                                                                      MultiXmlConfigDocument::maxIncludeDepth)));
            return;
        }
        const auto source = std::make_shared<const XmlSource>(XmlSource{path, includedFrom});
        String text;
        bool isNew = false;
        const auto read = [&]
        {
            const XmlFile file(path, includedFrom, Io::TrustedFile::Document);
            isNew = filesRead.insert(file.GetIdentity()).second;
            text = isNew ? file.Read() : String();
        };
        if (!Diagnostics::Attempt(FindingCode::UnreadableFile, read, {source, 0}) || !isNew)
        {
            return;
        }
        XmlSerializationContext context(path, true);
        Diagnostics::Attempt(FindingCode::MalformedDocument,
                             [&] { ReadDocument(source, text, rootElementName, object, context); });
        text = String();
        for (const auto& include : context.GetIncludes())
        {
            std::vector<String> includedPaths;
            Diagnostics::Attempt(FindingCode::InvalidInclude,
                                 [&] { includedPaths = FindIncludedFiles(include, context.GetDirectory()); });
            for (const String& includedPath : includedPaths)
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
