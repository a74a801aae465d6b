#pragma once

#include <Config/Settings.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <cstdint>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// A component of the system, as it is configured.
class Component : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Component";
    static constexpr const char* nameXmlName = "name";
    static constexpr const char* typeXmlName = "type";
    static constexpr const char* libraryXmlName = "library";
    static constexpr const char* processXmlName = "process";
    static constexpr const char* isRequiredXmlName = "isRequired";
    static constexpr const char* isEnabledXmlName = "isEnabled";
    static constexpr const char* isFinalXmlName = "final";
    static constexpr const char* startOrderXmlName = "startOrder";

    Component() = default;
    Component(String componentName, String componentType, String libraryName, const Settings& componentSettings);

    /// @throws XmlException also for a negative start order
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Compares all that is configured, not where it was written.
    [[nodiscard]] bool Equals(const Component& other) const;

    /// Replaces this definition by another one of the same name and type; start order and settings stay. The reader
    /// gives errors their position.
    /// @throws XmlException when this definition is final, or when names or types differ
    void Overwrite(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context,
                   const Component& other);

    String name;
    /// The name under which the library's factory knows the component.
    String type;
    String library;
    /// Empty: not assigned yet; "*": every process.
    String process;
    /// Built into the framework.
    bool isStatic = false;
    bool isRequired = false;
    bool isEnabled = true;
    /// No later definition may overwrite this one.
    bool isFinal = false;
    /// -1 when it is not configured.
    std::int32_t startOrder = -1;
    bool hasStartOrder = false;
    Settings settings;
    /// Where it was written.
    Commons::Xml::XmlPosition position;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
