#pragma once

#include "OfflineSystem.hpp"

#include <CLI/CLI.hpp>

namespace Vela::Kiroctl
{

/// The arguments of all commands that look at a system's documents.
inline void DeclareDocuments(CLI::App& app, SystemDocuments& documents)
{
    app.add_option("SETTINGS", documents.settings, "Settings document of the main process")
        ->type_name("FILE")
        ->capture_default_str();
    app.add_option("CONFIG", documents.configuration, "Configuration document of the system")
        ->type_name("FILE")
        ->capture_default_str();
}

/// The option of those that would construct components.
inline void DeclareNoLoad(CLI::App& app, bool& isLoadingForbidden)
{
    app.add_flag("--no-load", isLoadingForbidden, "Do not construct components to ask for their own start orders");
}

} // namespace Vela::Kiroctl
