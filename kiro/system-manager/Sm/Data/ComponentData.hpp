#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <cstdint>
#include <limits>

namespace Vela::System::Kiro::Internal::Sm::Data
{

/// A configured component.
class ComponentData
{
public:
    virtual ~ComponentData() = default;

    String name;
    String type;
    /// Empty for a type that is built into the executable.
    String library;
    String settingsPath;
    /// Where it is configured.
    Commons::Xml::XmlPosition position;
    /// Also true for a component that reports itself a system component.
    bool isRequired = true;
    /// A disabled component is created and takes part in no later phase.
    bool isEnabled = true;
    /// The configured start order; counts when hasStartOrder is set.
    std::uint32_t startOrder = std::numeric_limits<std::uint32_t>::max();
    bool hasStartOrder = false;
    /// Can be started and stopped; known after creation.
    bool isControllerComponent = false;
    bool isCreated = false;
};

} // namespace Vela::System::Kiro::Internal::Sm::Data
