#pragma once

#include <Vela/EnumDictionary.hpp>

#include <cstdint>

namespace Vela::System::NmPayload::Kiro
{

/// How far the system has come up. The names travel on the wire.
enum class SystemManagerState : std::uint8_t
{
    /// Nothing is done yet.
    Starting = 0,
    /// Processes run; components exist and have their settings.
    SettingsReady = 1,
    /// Components have their configuration.
    ConfigReady = 2,
    /// Controller components are started: the system runs.
    Running = 3,
};

inline const EnumDictionary<SystemManagerState>& GetEnumDictionary(SystemManagerState)
{
    static const EnumDictionary<SystemManagerState> dictionary{
        {SystemManagerState::Starting, "Starting"},
        {SystemManagerState::SettingsReady, "SettingsReady"},
        {SystemManagerState::ConfigReady, "ConfigReady"},
        {SystemManagerState::Running, "Running"},
    };
    return dictionary;
}

} // namespace Vela::System::NmPayload::Kiro
