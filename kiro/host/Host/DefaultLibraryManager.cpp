#include <Host/DefaultLibraryManager.hpp>
#include <Pm/ProcessManager.hpp>
#include <Settings/SystemDirectory.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

namespace Vela::System::Kiro::Internal
{

using Commons::Io::Path;

void DefaultLibraryManager::AddDefaultComponents(const String& librariesDirectory, const String& systemDirectory)
{
    const String libraryName = "Vela.System.Scm.Library";
    libraries.AddItem(Sm::Config::Library(libraryName, Path::Combine(librariesDirectory, "libVela.System.Scm.so")));
    components.AddItem(Sm::Config::Component(
        "Vela.System.Scm", "Vela::System::Scm::ScmComponent", libraryName,
        Sm::Config::Settings(Path::Combine(systemDirectory, Settings::SystemDirectory::switchesPath))));
}

void DefaultLibraryManager::BuildUpDefaultComponents(Pm::ProcessManager& processManager)
{
    for (const auto& [name, library] : libraries.GetItems())
    {
        processManager.LoadLibrary(name, library.binaryPath);
        log.Debug("Loaded library '{0}' from '{1}'", name, library.binaryPath);
    }
    for (const auto& [name, component] : components.GetItems())
    {
        const Services::Internal::ComponentProperties properties =
            processManager.BuildUpComponent(name, component.type, component.library, component.settings.GetPath());
        builtUpComponents.push_back(name);

        Services::ComponentInfo info;
        info.name = Rsc::RscString<512>(name);
        info.type = Rsc::RscString<512>(component.type);
        info.library = Rsc::RscString<512>(component.library);
        info.startOrder = properties.StartOrder;
        info.isRequired = component.isRequired;
        info.isEnabled = component.isEnabled;
        const std::lock_guard lock(mutex);
        componentInfos.push_back(std::move(info));
    }
}

void DefaultLibraryManager::TearDownDefaultComponents(Pm::ProcessManager& processManager)
{
    while (!builtUpComponents.empty())
    {
        const String name = builtUpComponents.back();
        builtUpComponents.pop_back();
        try
        {
            processManager.TearDownComponent(name);
        }
        catch (...)
        {
            const auto failure = CaughtException::Current();
            LogError(failure.GetTier() == CaughtException::Tier::Standard
                         ? fmt::format("std exception occurs while tearing down component '{0}': {1}", name,
                                       failure.GetText())
                         : failure.Describe("Exception occurs while tearing down component '{0}': {1}",
                                            "Unspecified exception occurs while tearing down component '{0}'", name));
        }
    }
}

std::vector<Services::ComponentInfo> DefaultLibraryManager::GetComponentInfos() const
{
    const std::lock_guard lock(mutex);
    return componentInfos;
}

void DefaultLibraryManager::LogError(const String& message)
{
    log.Error("{0}", message);
}

} // namespace Vela::System::Kiro::Internal
