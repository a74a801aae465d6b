#pragma once

#include <Config/KiroConfiguration.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Configuration/ConfigurationSettings.hpp>

#include <vector>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// Reads the configuration document with all the files that it includes, and completes it.
///
/// A load that throws leaves a partly filled configuration, which is of no further use.
class KiroConfigurationLoader
{
public:
    /// A component that is built into the framework. Files give it a process and a settings file; all else is fixed.
    struct StaticComponent
    {
        String name;
        String type;
    };

    KiroConfigurationLoader() = delete;

    /// The whole load: built-in components, files, processes without components, generic components.
    /// @throws XmlException, InvalidConfigException
    static void Load(const String& path, bool singleProcess, bool addStaticComponents,
                     KiroConfiguration& configuration);
    /// Reads a file and its includes.
    static void Load(const String& rootElementName, const String& path, KiroConfiguration& configuration);
    /// Reads several files and their includes.
    static void Load(const String& rootElementName, const Commons::Configuration::ConfigurationSettings& settings,
                     KiroConfiguration& configuration);

    /// Adds the framework's built-in components; at present there are none.
    static void AddStaticComponents(KiroConfiguration& configuration);
    static void AddStaticComponents(KiroConfiguration& configuration, const std::vector<StaticComponent>& builtIns);
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
