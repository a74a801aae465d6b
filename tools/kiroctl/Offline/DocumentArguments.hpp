#pragma once

#include "../CommandDeclaration.hpp"
#include "OfflineSystem.hpp"

namespace Vela::Kiroctl
{

/// The arguments of all commands that look at a system's documents.
inline void DeclareDocuments(const CommandDeclaration& command, SystemDocuments& documents)
{
    command.AddText("SETTINGS", documents.settings, "Settings document of the main process", {.name = "FILE"});
    command.AddText("CONFIG", documents.configuration, "Configuration document of the system", {.name = "FILE"});
}

} // namespace Vela::Kiroctl
