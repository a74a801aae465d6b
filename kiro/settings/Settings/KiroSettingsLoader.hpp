#pragma once

#include <Settings/KiroSettings.hpp>
#include <Vela/String.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

/// Reads the settings document with all the files that it includes.
class KiroSettingsLoader
{
public:
    KiroSettingsLoader() = delete;

    /// Reads the document into `settings`, then resolves and publishes them.
    /// @param reset  publish variables again that are published already
    /// @throws XmlException, InvalidConfigException, ArgumentException; the settings are of no use then
    static void Load(const String& path, KiroSettings& settings, bool reset);
};

} // namespace Vela::System::Kiro::Internal::Settings
