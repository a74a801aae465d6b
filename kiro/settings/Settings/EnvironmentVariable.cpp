#include <Settings/EnvironmentVariable.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/EnvironmentData.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Environment;
using Commons::EnvironmentData;
using Commons::Configuration::PlaceholderExpression;
using Commons::Diagnostics::FindingCode;
using Commons::Io::Path;
using Commons::Xml::XmlPosition;
using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;
using Commons::Xml::XmlWriter;

EnvironmentVariable::EnvironmentVariable(String variableName, String variableValue, bool isOverriding)
    : name(std::move(variableName))
    , value(std::move(variableValue))
    , isOverride(isOverriding)
{
}

void EnvironmentVariable::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    position = reader.GetPosition();
    directory = context.GetDirectory();
    reader.GetAttributeValue(nameXmlName, name);
    reader.GetAttributeValue(valueXmlName, value);
    if (!reader.TryGetAttributeValue(overrideXmlName, isOverride))
    {
        reader.TryGetAttributeValue(overriddenObsoleteXmlName, isOverride);
    }
    reader.TryGetAttributeValue(redefineXmlName, isRedefine);
    if (isRedefine && isOverride)
    {
        reader.Raise(FindingCode::InvalidVariable,
                     reader.Error("Environment variable '{0}' sets attribute 'redefine' and 'override' to 'true', this "
                                  "is not supported",
                                  name));
    }
    if (name.starts_with(pathPrefix))
    {
        value = context.ResolveRelativePath(value);
    }
    try
    {
        std::vector<String> names;
        GetValuePlaceholderNames(names);
    }
    catch (const ArgumentException& exception)
    {
        reader.Raise(
            FindingCode::UndefinedVariable,
            reader.Error("Environment variable '{0}' has an invalid value: {1}", name, exception.GetMessage()));
        // Nobody can go on with such a text, only with another one.
        value = PlaceholderExpression::Escape(value);
    }
}

void EnvironmentVariable::WriteXml(XmlWriter& writer, XmlSerializationContext&)
{
    writer.WriteAttribute(nameXmlName, name);
    writer.WriteAttribute(valueXmlName, value);
    if (isOverride)
    {
        writer.WriteAttribute(overrideXmlName, true);
    }
}

void EnvironmentVariable::Resolve()
{
    resolvedValue = PlaceholderExpression::Resolve(value);
    const bool isRelativePath =
        name.starts_with(pathPrefix) && !resolvedValue.empty() && !Path::IsAbsolute(resolvedValue);
    if (isRelativePath && !directory.empty())
    {
        resolvedValue = Path::GetFullPath(resolvedValue, directory);
    }
    isResolved = true;
}

void EnvironmentVariable::Publish()
{
    if (isPublished)
    {
        throw InvalidOperationException("Environment variable '{}' was published yet.", name);
    }
    const String& effectiveValue = GetEffectiveValue();
    auto* data = AppDomainSingleton<EnvironmentData>::TryGetInstance();
    const bool isAdded = data != nullptr && (isOverride ? data->AddOverriddenVariable(name, effectiveValue)
                                                        : data->AddDefaultVariable(name, effectiveValue));
    if (!isAdded && !Environment::SetVariable(name, effectiveValue))
    {
        Commons::Diagnostics::Raise(
            FindingCode::InvalidVariable, position,
            InvalidConfigException::At(position.ToString(),
                                       fmt::format("No environment can hold a variable of the name '{}'.", name)));
    }
    isPublished = true;
}

void EnvironmentVariable::ResolveAndPublish()
{
    if (!isResolved)
    {
        Resolve();
    }
    Publish();
}

void EnvironmentVariable::Reset()
{
    resolvedValue.clear();
    isResolved = false;
    isPublished = false;
}

EnvironmentVariable EnvironmentVariable::CreateOverride(const String& otherName) const
{
    EnvironmentVariable created(otherName, GetEffectiveValue(), true);
    created.directory = directory;
    created.position = position;
    return created;
}

void EnvironmentVariable::AssignValue(const EnvironmentVariable& other)
{
    name = other.name;
    value = other.value;
    resolvedValue = other.resolvedValue;
    directory = other.directory;
    position = other.position;
}

const String& EnvironmentVariable::GetName() const noexcept
{
    return name;
}

const String& EnvironmentVariable::GetValue() const noexcept
{
    return value;
}

const String& EnvironmentVariable::GetEffectiveValue() const noexcept
{
    return isResolved ? resolvedValue : value;
}

bool EnvironmentVariable::GetBoolValue() const
{
    return GetEffectiveValue() == "true";
}

bool EnvironmentVariable::GetValuePlaceholderNames(std::vector<String>& names) const
{
    PlaceholderExpression::Enumerator placeholders(value);
    while (placeholders.MoveNext())
    {
        names.push_back(placeholders.GetName());
    }
    return !names.empty();
}

bool EnvironmentVariable::IsComponentVariable() const
{
    return name.starts_with(componentPrefix) || name.starts_with(featurePrefix) || name.starts_with(packagePrefix);
}

bool EnvironmentVariable::IsOverride() const noexcept
{
    return isOverride;
}

bool EnvironmentVariable::IsRedefine() const noexcept
{
    return isRedefine;
}

bool EnvironmentVariable::IsResolved() const noexcept
{
    return isResolved;
}

bool EnvironmentVariable::IsPublished() const noexcept
{
    return isPublished;
}

const XmlPosition& EnvironmentVariable::GetPosition() const noexcept
{
    return position;
}

bool EnvironmentVariable::HasAnyPrefix(const String& name)
{
    return name.starts_with(pathPrefix) || name.starts_with(componentPrefix);
}

String EnvironmentVariable::GetPathPrefix()
{
    return pathPrefix;
}

String EnvironmentVariable::GetComponentPrefix()
{
    return componentPrefix;
}

} // namespace Vela::System::Kiro::Internal::Settings
