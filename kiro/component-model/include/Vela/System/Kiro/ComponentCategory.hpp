#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/System/Kiro/Api.hpp>

#include <cstdint>
#include <iosfwd>

namespace Vela::System::Kiro
{

/// What a component is to the system. Components of the categories System and Service belong to the platform: they are
/// always required.
enum class ComponentCategory : std::uint8_t
{
    None = 0,
    System = 1,
    Service = 2,
    Custom = 3,
};

/// The names "None", "System", "Service" and "Custom".
VELA_KIRO_API const EnumDictionary<ComponentCategory>& GetEnumDictionary(ComponentCategory category);

/// Writes the name, or the number of a value without one.
VELA_KIRO_API std::ostream& operator<<(std::ostream& stream, ComponentCategory category);

/// Reads one word. When it is not exactly one of the names, the stream fails and `category` stays as it is.
VELA_KIRO_API std::istream& operator>>(std::istream& stream, ComponentCategory& category);

} // namespace Vela::System::Kiro
