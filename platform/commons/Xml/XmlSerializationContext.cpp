#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <utility>

namespace Vela::System::Commons::Xml
{

using Configuration::PlaceholderExpression;
using Io::Path;

XmlSerializationContext::XmlSerializationContext(const String& path, bool mayInclude)
    : filePath(path)
    , directory(Path::GetDirectoryName(path))
    , areIncludesAllowed(mayInclude)
{
}

const String& XmlSerializationContext::GetFilePath() const noexcept
{
    return filePath;
}

String XmlSerializationContext::GetFileName() const
{
    return Path::GetFileName(filePath);
}

const String& XmlSerializationContext::GetDirectory() const noexcept
{
    return directory;
}

String XmlSerializationContext::ResolveRelativePath(const String& path) const
{
    if (path.empty() || Path::IsAbsolute(path) || PlaceholderExpression::BeginsWithPlaceholder(path))
    {
        return path;
    }
    const String base = PlaceholderExpression::Escape(directory);
    // What ".." behind a placeholder leads to depends on the variable's value.
    return path.find("${") == String::npos ? Path::GetFullPath(path, base) : Path::Combine(base, path);
}

String XmlSerializationContext::ResolvePath(const String& path) const
{
    const String resolved = PlaceholderExpression::Resolve(path);
    return resolved.empty() || Path::IsAbsolute(resolved) ? resolved : Path::GetFullPath(resolved, directory);
}

bool XmlSerializationContext::TryGetPath(XmlReader& reader, std::string_view attribute, XmlPath& path) const
{
    String text;
    if (!reader.TryGetAttributeValue(attribute, text))
    {
        return false;
    }
    path = XmlPath(ResolveRelativePath(text), directory, reader.GetPosition(), String(attribute));
    return true;
}

bool XmlSerializationContext::TryGetResolvedPath(XmlReader& reader, std::string_view attribute, String& path) const
{
    String text;
    if (!reader.TryGetAttributeValue(attribute, text))
    {
        return false;
    }
    XmlPath written(text, directory, reader.GetPosition(), String(attribute));
    written.Resolve();
    path = written.Get();
    return true;
}

void XmlSerializationContext::GetResolvedPath(XmlReader& reader, std::string_view attribute, String& path) const
{
    // Reading the text first gives a missing attribute its message.
    reader.GetAttributeValue(attribute, path);
    TryGetResolvedPath(reader, attribute, path);
}

void XmlSerializationContext::ReadIncludesElement(XmlReader& reader)
{
    if (!areIncludesAllowed)
    {
        InvalidXmlElementOccurs(reader, includesXmlName);
        return;
    }
    String name;
    while (reader.ReadStartElement(name))
    {
        if (name == includeXmlName)
        {
            Include include{{}, reader.GetPosition()};
            reader.GetAttributeValue(includePathXmlName, include.path);
            includes.push_back(std::move(include));
        }
        else
        {
            InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

void XmlSerializationContext::InvalidXmlElementOccurs(XmlReader& reader, const String& name) const
{
    WarnAt(log, Diagnostics::FindingCode::UnknownElement, reader.GetPosition(),
           "Element '{0}' is not known here, it is skipped.", name);
    reader.SkipElement();
}

const std::vector<XmlSerializationContext::Include>& XmlSerializationContext::GetIncludes() const noexcept
{
    return includes;
}

} // namespace Vela::System::Commons::Xml
