#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/System/Nm/Api.hpp>

#include <cstdint>
#include <iosfwd>

namespace Vela::System::Nm
{

/// How much a notification matters to whoever watches the system. The numbers travel on the wire: append, never
/// renumber.
enum class Severity : std::uint8_t
{
    /// Nobody has to do anything.
    Information = 1,
    /// Somebody should look at it.
    Warning = 2,
    /// A function of the system is lost.
    Error = 3,
    /// The system itself is lost or about to be.
    Fatal = 4,
};

VELA_NM_API const EnumDictionary<Severity>& GetEnumDictionary(Severity);
VELA_NM_API std::ostream& operator<<(std::ostream& stream, Severity severity);
VELA_NM_API std::istream& operator>>(std::istream& stream, Severity& severity);

} // namespace Vela::System::Nm
