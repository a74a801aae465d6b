#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <vector>

namespace Vela::System::Kiro::Internal::Settings
{

/// One definition of an environment variable. Its value may name other variables as placeholders.
class EnvironmentVariable : public Commons::Xml::IXmlSerializable
{
public:
    static constexpr const char* elementXmlName = "EnvironmentVariable";
    static constexpr const char* nameXmlName = "name";
    static constexpr const char* valueXmlName = "value";
    static constexpr const char* overrideXmlName = "override";
    static constexpr const char* overriddenObsoleteXmlName = "overridden";
    static constexpr const char* redefineXmlName = "redefine";
    static constexpr const char* pathPrefix = "VELA_PATH_";
    static constexpr const char* componentPrefix = "VELA_COMPONENT:";
    static constexpr const char* featurePrefix = "VELA_FEATURE:";
    static constexpr const char* packagePrefix = "VELA_PACKAGE:";

    EnvironmentVariable() = default;
    EnvironmentVariable(String variableName, String variableValue, bool isOverriding);

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    void WriteXml(Commons::Xml::XmlWriter& writer, Commons::Xml::XmlSerializationContext& context) override;

    /// Puts the present values of other variables in place of the placeholders. A path that is still relative then is
    /// made absolute against the directory of its document.
    /// @throws KeyNotFoundException, ArgumentException for placeholders that cannot be resolved
    void Resolve();
    /// Hands the effective value to the platform's environment.
    /// @throws InvalidOperationException "Environment variable '{}' was published yet."
    /// @throws InvalidConfigException when no environment can hold the name
    void Publish();
    void ResolveAndPublish();
    /// Forgets the resolved value and that it was published.
    void Reset();
    /// An override of another name with this variable's effective value.
    [[nodiscard]] EnvironmentVariable CreateOverride(const String& otherName) const;
    /// Takes over name, value and resolved value of another definition, and where they were written.
    void AssignValue(const EnvironmentVariable& other);

    [[nodiscard]] const String& GetName() const noexcept;
    /// As it is written, or as an absolute path.
    [[nodiscard]] const String& GetValue() const noexcept;
    /// The resolved value where there is one, otherwise the value as it is written.
    [[nodiscard]] const String& GetEffectiveValue() const noexcept;
    /// True when the effective value is "true".
    [[nodiscard]] bool GetBoolValue() const;
    /// Appends the names of all placeholders in the value, in their order; answers whether `names` holds any then.
    /// @throws ArgumentException for a malformed placeholder
    bool GetValuePlaceholderNames(std::vector<String>& names) const;
    [[nodiscard]] bool IsComponentVariable() const;
    [[nodiscard]] bool IsOverride() const noexcept;
    [[nodiscard]] bool IsRedefine() const noexcept;
    [[nodiscard]] bool IsResolved() const noexcept;
    [[nodiscard]] bool IsPublished() const noexcept;
    /// Where it was written; nowhere when no document wrote it.
    [[nodiscard]] const Commons::Xml::XmlPosition& GetPosition() const noexcept;

    /// Whether a name is one of a path or a component.
    static bool HasAnyPrefix(const String& name);
    static String GetPathPrefix();
    static String GetComponentPrefix();

private:
    String name;
    String value;
    String resolvedValue;
    bool isOverride = false;
    bool isRedefine = false;
    bool isResolved = false;
    bool isPublished = false;
    /// Of the document, for relative paths.
    String directory;
    Commons::Xml::XmlPosition position;
};

} // namespace Vela::System::Kiro::Internal::Settings
