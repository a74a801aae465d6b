#include <Settings/EnvironmentVariables.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Environment;
using Commons::Configuration::PlaceholderExpression;
using Commons::Diagnostics::FindingCode;
using Commons::Diagnostics::Raise;
using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;
using Commons::Xml::XmlWriter;

void EnvironmentVariables::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    const String file = context.GetFileName();
    const bool fromDeprecatedFile = file == deprecatedFilename || file == localDeprecatedFilename;
    String name;
    while (reader.ReadStartElement(name))
    {
        if (name == EnvironmentVariable::elementXmlName)
        {
            EnvironmentVariable variable;
            variable.ReadXml(reader, context);
            if (!AddVariable(variable, fromDeprecatedFile))
            {
                const auto defined = variables.find(variable.GetName());
                Raise(FindingCode::ContradictoryVariable, reader.GetPosition(),
                      reader.Error("Environment variable '{0}' is already defined!", variable.GetName()),
                      defined->second.GetPosition());
            }
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

void EnvironmentVariables::WriteXml(XmlWriter& writer, XmlSerializationContext& context)
{
    for (Map* map : {&variables, &overriddenVariables})
    {
        for (auto& [name, variable] : *map)
        {
            writer.WriteStartElement(EnvironmentVariable::elementXmlName);
            variable.WriteXml(writer, context);
            writer.WriteEndElement();
        }
    }
}

bool EnvironmentVariables::AddVariable(const EnvironmentVariable& variable, bool fromDeprecatedFile)
{
    if (fromDeprecatedFile)
    {
        const String currentName = PlaceholderExpression::GetPlaceholderName(variable.GetEffectiveValue());
        if (!currentName.empty())
        {
            deprecatedNames[variable.GetName()] = currentName;
        }
    }
    if (variable.IsOverride())
    {
        return AddOverriddenVariable(variable);
    }
    return variable.IsRedefine() ? AddRedefinedVariable(variable) : AddNormalVariable(variable);
}

bool EnvironmentVariables::AddNormalVariable(const EnvironmentVariable& variable)
{
    const auto [stored, isNew] = variables.emplace(variable.GetName(), variable);
    if (isNew)
    {
        return true;
    }
    if (stored->second.GetEffectiveValue() == variable.GetEffectiveValue())
    {
        log.Debug("Environment variable '{}' was defined twice, but values are equal", variable.GetName());
        return true;
    }
    log.Fatal("Environment variable '{}' was defined twice with different values", variable.GetName());
    return false;
}

bool EnvironmentVariables::AddRedefinedVariable(const EnvironmentVariable& variable)
{
    const auto [stored, isNew] = redefinedVariables.emplace(variable.GetName(), variable);
    if (isNew)
    {
        return true;
    }
    if (stored->second.GetEffectiveValue() == variable.GetEffectiveValue())
    {
        log.Debug("Environment variable '{}' was redefined twice, but values are equal", variable.GetName());
    }
    else
    {
        log.Debug("Environment variable '{}' was redefined twice with different values, new value is: {}",
                  variable.GetName(), variable.GetEffectiveValue());
    }
    stored->second.AssignValue(variable);
    return true;
}

bool EnvironmentVariables::AddOverriddenVariable(const EnvironmentVariable& variable)
{
    const bool hasUsableOldNames = HasUsableOldNames(variable);
    const auto [stored, isNew] = overriddenVariables.emplace(variable.GetName(), variable);
    if (!isNew)
    {
        if (stored->second.GetEffectiveValue() == variable.GetEffectiveValue())
        {
            log.Debug("Environment variable '{}' was overriden several times, but values are equal",
                      variable.GetName());
        }
        else
        {
            log.Debug("Environment variable '{}' was overriden twice with different values, new value is: {}",
                      variable.GetName(), variable.GetEffectiveValue());
        }
        stored->second = variable;
    }
    const auto currentName = deprecatedNames.find(variable.GetName());
    if (hasUsableOldNames && currentName != deprecatedNames.end())
    {
        AddVariable(variable.CreateOverride(currentName->second), false);
    }
    return true;
}

bool EnvironmentVariables::HasUsableOldNames(const EnvironmentVariable& variable) const
{
    Names seen{variable.GetName()};
    for (auto next = deprecatedNames.find(variable.GetName()); next != deprecatedNames.end();
         next = deprecatedNames.find(next->second))
    {
        if (!seen.insert(next->second).second)
        {
            Raise(FindingCode::CircularVariable, variable.GetPosition(),
                  InvalidConfigException::At(variable.GetPosition().ToString(),
                                             fmt::format("Environment variable '{}' is overridden, but its old names "
                                                         "lead to each other in a circle",
                                                         variable.GetName())));
            return false;
        }
    }
    return true;
}

void EnvironmentVariables::Publish(bool reset)
{
    if (reset)
    {
        ResetResolvedAndPublished();
    }
    AssignRedefinedValues();
    ResolveAndPublishVariables();
    Environment::RegisterEnvironmentVariables();
}

void EnvironmentVariables::ResetResolvedAndPublished()
{
    for (Map* map : {&variables, &overriddenVariables, &redefinedVariables})
    {
        for (auto& [name, variable] : *map)
        {
            variable.Reset();
        }
    }
}

void EnvironmentVariables::AssignRedefinedValues()
{
    for (const auto& [name, redefinition] : redefinedVariables)
    {
        const auto basic = variables.find(name);
        if (basic == variables.end())
        {
            Raise(FindingCode::RedefinedNothing, redefinition.GetPosition(),
                  InvalidConfigException::At(
                      redefinition.GetPosition().ToString(),
                      fmt::format("Environment variable '{}' was redefined without a basic definition!", name)));
            continue;
        }
        basic->second = redefinition;
    }
}

void EnvironmentVariables::ResolveAndPublishVariables()
{
    Names visiting;
    for (const auto& [name, variable] : variables)
    {
        ResolveAndPublishVariable(name, visiting);
    }
    for (auto& [name, variable] : overriddenVariables)
    {
        if (!variable.IsPublished())
        {
            log.Debug("Overridden variable '{}' does not have a base definition.", name);
            ResolveAndPublishVariable(variable, visiting);
        }
    }
}

/// The variable has a basic definition.
void EnvironmentVariables::ResolveAndPublishVariable(const String& name, Names& visiting)
{
    ResolveAndPublishVariable(variables.at(name), visiting);
    const auto overriding = overriddenVariables.find(name);
    if (overriding != overriddenVariables.end())
    {
        ResolveAndPublishVariable(overriding->second, visiting);
    }
}

void EnvironmentVariables::ResolveAndPublishVariable(EnvironmentVariable& variable, Names& visiting)
{
    if (variable.IsPublished())
    {
        return;
    }
    visiting.insert(variable.GetName());
    if (visiting.size() > maxDependencyDepth)
    {
        Raise(FindingCode::CircularVariable, variable.GetPosition(),
              InvalidConfigException::At(
                  variable.GetPosition().ToString(),
                  fmt::format("Environment variables depend on each other in a chain of more than {}.",
                              maxDependencyDepth)));
    }
    const bool isResolvable =
        visiting.size() <= maxDependencyDepth && ResolveAndPublishDependencies(variable, visiting);
    visiting.erase(variable.GetName());
    if (!isResolvable)
    {
        // The text as it is written stands for the value that there is none of.
        variable.Publish();
        return;
    }
    variable.ResolveAndPublish();
}

/// Answers false when the value cannot be resolved.
bool EnvironmentVariables::ResolveAndPublishDependencies(EnvironmentVariable& variable, Names& visiting)
{
    bool isResolvable = true;
    std::vector<String> names;
    variable.GetValuePlaceholderNames(names);
    for (const String& name : names)
    {
        if (visiting.contains(name))
        {
            Raise(FindingCode::CircularVariable, variable.GetPosition(),
                  InvalidConfigException::At(
                      variable.GetPosition().ToString(),
                      fmt::format("Environment variable '{}' causes a circular dependency of variable '{}'",
                                  variable.GetName(), name)));
            isResolvable = false;
        }
        else if (variables.contains(name))
        {
            ResolveAndPublishVariable(name, visiting);
        }
        else
        {
            isResolvable = HasVariableFromOutside(name, variable) && isResolvable;
        }
    }
    return isResolvable;
}

/// Values may name variables that the settings do not define; one that exists only as an override is not among them.
bool EnvironmentVariables::HasVariableFromOutside(const String& name, const EnvironmentVariable& neededBy)
{
    String value;
    const bool hasVariable = Environment::GetVariableValue(name, value);
    if (!hasVariable)
    {
        ArgumentException exception("Cannot publish environment variable '{}' because it does not exists.", name);
        exception.SetInnerText(fmt::format("It is needed by environment variable '{}' ({})", neededBy.GetName(),
                                           neededBy.GetPosition().ToString()));
        Raise(FindingCode::UndefinedVariable, neededBy.GetPosition(), exception);
    }
    return hasVariable;
}

bool EnvironmentVariables::ResolveDeprecatedVariableName(const String& name, String& currentName) const
{
    const auto found = deprecatedNames.find(name);
    if (found == deprecatedNames.end())
    {
        return false;
    }
    currentName = found->second;
    return true;
}

const EnvironmentVariables::Map& EnvironmentVariables::GetVariables() const noexcept
{
    return variables;
}

const EnvironmentVariables::Map& EnvironmentVariables::GetOverriddenVariables() const noexcept
{
    return overriddenVariables;
}

const EnvironmentVariables::Map& EnvironmentVariables::GetRedefinedVariables() const noexcept
{
    return redefinedVariables;
}

} // namespace Vela::System::Kiro::Internal::Settings
