#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <cstdint>

namespace Vela::System::Commons::Diagnostics
{

/// How much a process says: a message is written when its level is at most the logger's.
enum class LogLevel : std::uint8_t
{
    None = 0,
    Off = 1,
    Fatal = 2,
    Error = 3,
    Warning = 5,
    Info = 6,
    Debug = 7,
    Trace = 8,
};

VELA_COMMONS_API const EnumDictionary<LogLevel>& GetEnumDictionary(LogLevel);

} // namespace Vela::System::Commons::Diagnostics
