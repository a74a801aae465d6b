#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/XmlPath.hpp>

#include <utility>

namespace Vela::System::Commons::Xml
{

XmlPath::XmlPath(String pathExpression)
    : expression(std::move(pathExpression))
    , path(expression)
{
}

XmlPath::XmlPath(String pathExpression, String baseDirectory, XmlPosition writtenAt, String attribute)
    : expression(std::move(pathExpression))
    , path(expression)
    , directory(std::move(baseDirectory))
    , position(std::move(writtenAt))
    , attributeName(std::move(attribute))
{
}

const String& XmlPath::Get() const noexcept
{
    return path;
}

bool XmlPath::IsEmpty() const noexcept
{
    return path.empty();
}

void XmlPath::Resolve()
{
    try
    {
        String resolved = Configuration::PlaceholderExpression::Resolve(expression);
        const bool isRelative = !resolved.empty() && !Io::Path::IsAbsolute(resolved);
        path = isRelative && !directory.empty() ? Io::Path::GetFullPath(resolved, directory) : std::move(resolved);
    }
    catch (const Exception& exception)
    {
        Diagnostics::Raise(
            Diagnostics::FindingCode::UndefinedVariable, position,
            XmlException::At(position.ToString(), fmt::format("The path in attribute '{0}' cannot be resolved: {1}",
                                                              attributeName, exception.GetMessage())));
    }
}

} // namespace Vela::System::Commons::Xml
