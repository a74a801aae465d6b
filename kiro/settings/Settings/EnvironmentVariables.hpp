#pragma once

#include <Settings/EnvironmentVariable.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

#include <cstddef>
#include <map>
#include <set>

namespace Vela::System::Kiro::Internal::Settings
{

/// The environment variables that the settings define.
///
/// A variable has one basic definition, which may be redefined (its value replaced by a later file) and overridden (a
/// value that counts more). Values may name other variables; each variable is published after those that it names, so
/// that it always sees their final values. Files for deprecated names keep old names alive: an old name stands there
/// with the current one as its value.
class EnvironmentVariables : public Commons::Xml::IXmlSerializable,
                             public Commons::IDeprecatedNames,
                             private Commons::Diagnostics::Loggable<EnvironmentVariables>
{
public:
    static constexpr const char* elementXmlName = "EnvironmentVariables";
    static constexpr const char* deprecatedFilename = "Deprecated.kiro.settings";
    static constexpr const char* localDeprecatedFilename = "Local.deprecated.kiro.settings";
    /// Variables that depend on each other in longer chains are refused.
    static constexpr std::size_t maxDependencyDepth = 1000;

    using Map = std::map<String, EnvironmentVariable>;

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Writes the basic definitions, then the overriding ones.
    void WriteXml(Commons::Xml::XmlWriter& writer, Commons::Xml::XmlSerializationContext& context) override;

    /// Adds a definition of any kind.
    /// @param fromDeprecatedFile  whether it stands in a file for deprecated names
    /// @return false when it contradicts an earlier basic definition
    /// @throws InvalidConfigException for an override of old names that lead to each other in a circle
    bool AddVariable(const EnvironmentVariable& variable, bool fromDeprecatedFile);
    bool AddNormalVariable(const EnvironmentVariable& variable);
    bool AddRedefinedVariable(const EnvironmentVariable& variable);
    bool AddOverriddenVariable(const EnvironmentVariable& variable);

    /// Resolves and publishes all variables that are not published yet, each after those that it depends on.
    /// @param reset  publish every variable again, from the texts as they were written
    /// @throws InvalidConfigException for a redefinition of nothing and for variables that depend on each other
    /// @throws ArgumentException for a placeholder that names an unknown variable
    void Publish(bool reset);

    bool ResolveDeprecatedVariableName(const String& name, String& currentName) const override;

    [[nodiscard]] const Map& GetVariables() const noexcept;
    [[nodiscard]] const Map& GetOverriddenVariables() const noexcept;
    [[nodiscard]] const Map& GetRedefinedVariables() const noexcept;

private:
    using Names = std::set<String>;

    void ResetResolvedAndPublished();
    void AssignRedefinedValues();
    void ResolveAndPublishVariables();
    void ResolveAndPublishVariable(const String& name, Names& visiting);
    void ResolveAndPublishVariable(EnvironmentVariable& variable, Names& visiting);
    bool ResolveAndPublishDependencies(EnvironmentVariable& variable, Names& visiting);
    static bool HasVariableFromOutside(const String& name, const EnvironmentVariable& neededBy);
    [[nodiscard]] bool HasUsableOldNames(const EnvironmentVariable& variable) const;

    Map variables;
    Map overriddenVariables;
    Map redefinedVariables;
    std::map<String, String> deprecatedNames;
};

} // namespace Vela::System::Kiro::Internal::Settings
