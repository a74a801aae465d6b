#include <Config/KiroConfigurationLoader.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

using Commons::Configuration::ConfigurationSettings;
using Commons::Xml::MultiXmlConfigDocument;

void KiroConfigurationLoader::Load(const String& path, bool singleProcess, bool addStaticComponents,
                                   KiroConfiguration& configuration)
{
    if (addStaticComponents)
    {
        AddStaticComponents(configuration);
    }
    Load(KiroConfiguration::documentPathXmlName, path, configuration);
    configuration.ResolveMultiProcessItems(singleProcess);
}

void KiroConfigurationLoader::Load(const String& rootElementName, const String& path, KiroConfiguration& configuration)
{
    MultiXmlConfigDocument(rootElementName, configuration).Load(path);
}

void KiroConfigurationLoader::Load(const String& rootElementName, const ConfigurationSettings& settings,
                                   KiroConfiguration& configuration)
{
    MultiXmlConfigDocument(rootElementName, configuration).Load(settings);
}

void KiroConfigurationLoader::AddStaticComponents(KiroConfiguration& configuration)
{
    static const std::vector<StaticComponent> builtIns;
    AddStaticComponents(configuration, builtIns);
}

void KiroConfigurationLoader::AddStaticComponents(KiroConfiguration& configuration,
                                                  const std::vector<StaticComponent>& builtIns)
{
    for (const StaticComponent& builtIn : builtIns)
    {
        Component component(builtIn.name, builtIn.type, {}, Settings());
        component.isStatic = true;
        configuration.components.AddItem(component);
    }
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
