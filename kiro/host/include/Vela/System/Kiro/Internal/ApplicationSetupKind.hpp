#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/System/Kiro/Api.hpp>

#include <cstdint>
#include <iosfwd>

namespace Vela::System::Kiro::Internal
{

/// Which basic components a process has; flags.
enum class ApplicationSetupKind : std::uint32_t
{
    None = 0,
    Remoting = 1,
    NotificationManager = 2,
    ProcessManager = 4,
    SystemManager = 8,
    /// A bit of its own together with that of the process manager, in which the system configuration component lives.
    SystemConfigurationManager = 20,
};

constexpr ApplicationSetupKind operator|(ApplicationSetupKind left, ApplicationSetupKind right) noexcept
{
    return static_cast<ApplicationSetupKind>(static_cast<std::uint32_t>(left) | static_cast<std::uint32_t>(right));
}

/// True when all bits of `part` are in `kind`.
constexpr bool Contains(ApplicationSetupKind kind, ApplicationSetupKind part) noexcept
{
    return (static_cast<std::uint32_t>(kind) & static_cast<std::uint32_t>(part)) == static_cast<std::uint32_t>(part);
}

VELA_KIRO_API const EnumDictionary<ApplicationSetupKind>& GetEnumDictionary(ApplicationSetupKind);
VELA_KIRO_API std::ostream& operator<<(std::ostream& stream, ApplicationSetupKind kind);
VELA_KIRO_API std::istream& operator>>(std::istream& stream, ApplicationSetupKind& kind);

} // namespace Vela::System::Kiro::Internal
