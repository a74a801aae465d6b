#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>

#include <Scm/ScmComponent.hpp>

namespace Vela::System::Scm
{

ScmComponent::ScmComponent(Kiro::IApplication& application, Kiro::ILibrary& library, const String& name)
    : ComponentBase(application, library, name, Kiro::ComponentCategory::System, GetDefaultStartOrder(), true)
{
}

void ScmComponent::LoadSettings(const String& settingsPath)
{
    settings = ScmSettings();
    if (!Commons::Io::File::Exists(settingsPath))
    {
        log.Debug("There are no settings at '{0}': nothing is configured.", settingsPath);
        return;
    }
    Commons::Xml::MultiXmlConfigDocument(ScmSettings::documentXmlName, settings).Load(settingsPath);
}

void ScmComponent::Dispose()
{
    settings = ScmSettings();
}

std::map<String, String> ScmComponent::GetEnvironmentVariables() const
{
    return settings.GetVariables();
}

void ScmComponent::OnEnvironmentVariablesTakenOver()
{
    for (const auto& [name, value] : settings.GetVariables())
    {
        log.Debug("{0} = {1}", name, value);
    }
}

} // namespace Vela::System::Scm
