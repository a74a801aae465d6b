#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

namespace Vela::System::Commons::Xml
{

/// A path that stands in a document. It keeps the text as it was written, the directory to which it is relative and
/// where it was written, so that its placeholders can be resolved later, and again, and an error still names the place.
class VELA_COMMONS_API XmlPath
{
public:
    XmlPath() = default;
    /// A path that no document wrote, such as a default: placeholders are resolved in it, but it stays relative.
    explicit XmlPath(String pathExpression);
    /// @param pathExpression  path, made absolute already unless it begins with a placeholder
    /// @param baseDirectory   absolute; where the path is relative to when it is still relative once resolved
    /// @param writtenAt       position of the element
    /// @param attribute       name of the attribute
    XmlPath(String pathExpression, String baseDirectory, XmlPosition writtenAt, String attribute);

    /// The resolved path once Resolve has been called, until then the text to be resolved.
    [[nodiscard]] const String& Get() const noexcept;
    [[nodiscard]] bool IsEmpty() const noexcept;

    /// Puts the present values of the environment variables in place of the placeholders, then makes the path absolute
    /// when it is not; an empty path stays empty. Begins with the text as it was written each time.
    /// @throws XmlException that names file, line, attribute and, when it is unknown, the variable
    void Resolve();

private:
    String expression;
    String path;
    String directory;
    XmlPosition position;
    String attributeName;
};

} // namespace Vela::System::Commons::Xml
