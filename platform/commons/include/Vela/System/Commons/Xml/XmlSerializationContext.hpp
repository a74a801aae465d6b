#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Xml/XmlPath.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <string_view>
#include <vector>

namespace Vela::System::Commons::Xml
{

class XmlReader;

/// What an object that is being read needs to know about the file: where it lies, how its paths are meant, and which
/// further files it includes. There is one context per file.
class VELA_COMMONS_API XmlSerializationContext : private Diagnostics::Loggable<XmlSerializationContext>
{
public:
    /// A file that the document includes, as it is written: a path or a pattern, with placeholders.
    struct Include
    {
        String path;
        XmlPosition position;
    };

    /// The element that names included files: `<Includes><Include path="..."/></Includes>`.
    static constexpr const char* includesXmlName = "Includes";
    static constexpr const char* includeXmlName = "Include";
    static constexpr const char* includePathXmlName = "path";

    /// @param path  absolute path of the file
    /// @param mayInclude  whether the kind of document knows includes; where it does not, they are invalid elements
    XmlSerializationContext(const String& path, bool mayInclude);

    /// Absolute path of the file being read.
    [[nodiscard]] const String& GetFilePath() const noexcept;
    /// Its name without directory.
    [[nodiscard]] String GetFileName() const;
    /// Its directory.
    [[nodiscard]] const String& GetDirectory() const noexcept;

    /// Makes a path absolute against the file's directory, unless it is absolute, empty or begins with a placeholder.
    /// Placeholders stay in place: the result is meant for PlaceholderExpression::Resolve, and dollar signs of the
    /// directory are doubled for it.
    [[nodiscard]] String ResolveRelativePath(const String& path) const;
    /// Resolves placeholders, then makes the path absolute against the file's directory; an empty path stays empty.
    /// @throws KeyNotFoundException, ArgumentException for placeholders that cannot be resolved
    [[nodiscard]] String ResolvePath(const String& path) const;

    /// Reads an optional path attribute, which can be resolved later; false when it is missing.
    bool TryGetPath(XmlReader& reader, std::string_view attribute, XmlPath& path) const;
    /// Reads an optional path attribute and resolves it at once; false, leaving `path` alone, when it is missing.
    /// @throws XmlException that names file, line, attribute and variable
    bool TryGetResolvedPath(XmlReader& reader, std::string_view attribute, String& path) const;
    /// The same for a mandatory attribute.
    void GetResolvedPath(XmlReader& reader, std::string_view attribute, String& path) const;

    /// Reads the includes element on which the reader stands. The files are read when the present one is through.
    /// @throws XmlException
    void ReadIncludesElement(XmlReader& reader);
    /// Says with file and line that the element on which the reader stands is not known here; it is skipped, and
    /// the load goes on.
    void InvalidXmlElementOccurs(XmlReader& reader, const String& name) const;

    [[nodiscard]] const std::vector<Include>& GetIncludes() const noexcept;

private:
    const String filePath;
    const String directory;
    const bool areIncludesAllowed;
    std::vector<Include> includes;
};

} // namespace Vela::System::Commons::Xml
