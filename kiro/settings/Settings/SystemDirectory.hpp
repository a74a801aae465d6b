#pragma once

namespace Vela::System::Kiro::Internal::Settings::SystemDirectory
{

/// The variable that names the directory.
inline constexpr const char* variableName = "VELA_PATH_SYSTEM_DIR";
/// The settings of the system configuration manager in it: features and their switches.
inline constexpr const char* switchesPath = "System/Scm/Scm.settings";

} // namespace Vela::System::Kiro::Internal::Settings::SystemDirectory
