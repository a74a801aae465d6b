#include <Settings/KiroSettingsLoader.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

void KiroSettingsLoader::Load(const String& path, KiroSettings& settings, bool reset)
{
    Commons::Xml::MultiXmlConfigDocument(KiroSettings::documentXmlName, settings).Load(path);
    settings.ResolveAndPublish(reset);
}

} // namespace Vela::System::Kiro::Internal::Settings
