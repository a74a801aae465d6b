#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/System/Kiro/Api.hpp>

#include <cstdint>
#include <iosfwd>

namespace Vela::System::Kiro::Internal
{

/// The role of a process: the main process commands the children.
enum class ProcessKind : std::uint8_t
{
    None = 0,
    Main = 1,
    Child = 2,
};

VELA_KIRO_API const EnumDictionary<ProcessKind>& GetEnumDictionary(ProcessKind);
VELA_KIRO_API std::ostream& operator<<(std::ostream& stream, ProcessKind kind);
VELA_KIRO_API std::istream& operator>>(std::istream& stream, ProcessKind& kind);

} // namespace Vela::System::Kiro::Internal
