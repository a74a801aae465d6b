#include "OfflineSystem.hpp"

#include <Config/KiroConfigurationLoader.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Settings/SystemDirectory.hpp>
#include <Sm/ComponentsController.hpp>
#include <Sm/ProcessesController.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/EnvironmentData.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

#include <Scm/ScmSettings.hpp>

namespace Vela::Kiroctl
{

namespace Settings = System::Kiro::Internal::Settings;

using Settings::KiroSettings;
using Settings::KiroSettingsLoader;
using System::Commons::Environment;
using System::Commons::EnvironmentData;
using System::Commons::Diagnostics::Attempt;
using System::Commons::Diagnostics::FindingCode;
using System::Commons::Diagnostics::LoadObserver;
using System::Commons::Io::Path;
using System::Commons::Xml::MultiXmlConfigDocument;
using System::Kiro::Internal::Sm::ComponentsController;
using System::Kiro::Internal::Sm::ProcessesController;
using System::Kiro::Internal::Sm::Config::KiroConfigurationLoader;
using System::Kiro::Internal::Sm::Data::ProcessData;

namespace
{

/// What every process of the runtime has before it reads its settings; the tool stands beside the runtime's executable.
void SetupEnvironment(const String& processName)
{
    Environment::Setup();
    Singleton<AppDomain>::GetInstance().SetApplicationName(processName);
    AppDomainSingleton<EnvironmentData>::GetInstance().AddDefaultVariable(
        Environment::binDirectoryName, Path::GetDirectoryName(Environment::GetExecutablePath()));
}

void LoadSettings(const String& path, KiroSettings& settings)
{
    Attempt(FindingCode::UndefinedVariable, [&] { KiroSettingsLoader::Load(path, settings, false); });
}

/// Loads the files that settings name, with one wrong the others.
void LoadNamedFiles(const KiroSettings& settings, const LoadRecord& record)
{
    using Settings::LogSettings;
    using Settings::PathSettings;
    const auto load = [&record](FindingCode code, const char* element, const char* attribute, auto&& step)
    {
        Attempt(code, step, record.FindPlace(element, attribute));
    };
    const String& log = settings.GetLogSettings().GetConfigFile();
    if (!log.empty())
    {
        load(FindingCode::InvalidLogConfiguration, LogSettings::elementXmlName, LogSettings::configFileXmlName,
             [&] { System::Commons::Diagnostics::LogManager::CheckConfiguration(log); });
    }
    load(FindingCode::InvalidRemotingSettings, Settings::RscSettings::elementXmlName, PathSettings::pathXmlName,
         [&] { System::Rsc::RscManagerOptions::Load(settings.GetRscSettings().GetPath()); });
    load(FindingCode::InvalidNotificationSettings, Settings::NmSettings::elementXmlName, PathSettings::pathXmlName,
         [&] { System::Nm::NotificationManagerSetup::CheckSettings(settings.GetNmSettings().GetPath()); });
    if (settings.GetSecuritySettings().HasPath())
    {
        load(FindingCode::InvalidSecuritySettings, Settings::SecuritySettings::elementXmlName,
             PathSettings::pathXmlName,
             [&] { System::Rsc::RscManager::CheckSecuritySettings(settings.GetSecuritySettings().GetPath()); });
    }
}

} // namespace

OfflineSystem::OfflineSystem(const SystemDocuments& systemDocuments, LoadRecord& loadRecord)
    : documents{Path::GetFullPath(systemDocuments.settings), Path::GetFullPath(systemDocuments.configuration)}
{
    const LoadObserver::Scope scope(loadRecord);
    SetupEnvironment(mainProcessName);
    LoadSettings(documents.settings, settings);
    Environment::SetupSettings(settings.GetEnvironmentVariables());
    LoadNamedFiles(settings, loadRecord);
    LoadSwitches();
    Attempt(FindingCode::MalformedDocument,
            [&] { KiroConfigurationLoader::Load(documents.configuration, IsSingleProcess(), true, configuration); });
    ProcessesController::FillTable(configuration, IsSingleProcess(), mainProcessName, processes);
    ComponentsController::FillTables(configuration, IsSingleProcess(), mainProcessName, processes);
}

void OfflineSystem::LoadSwitches()
{
    const String path = Path::Combine(Environment::GetVariableValueOr(Settings::SystemDirectory::variableName, ""),
                                      Settings::SystemDirectory::switchesPath);
    if (!System::Commons::Io::File::Exists(path))
    {
        return;
    }
    System::Scm::ScmSettings switches;
    MultiXmlConfigDocument(System::Scm::ScmSettings::documentXmlName, switches).Load(path);
    for (const auto& [name, value] : switches.GetVariables())
    {
        settings.GetEnvironmentVariables().AddVariable(Settings::EnvironmentVariable(name, value, false), false);
    }
    settings.ResolveAndPublish(true);
}

void OfflineSystem::CheckChildSettings(const String& path, LoadRecord& loadRecord)
{
    const LoadObserver::Scope scope(loadRecord);
    // The definitions of the main process are what a child inherits.
    Environment::Dispose();
    SetupEnvironment("Child");
    KiroSettings settings;
    LoadSettings(path, settings);
    LoadNamedFiles(settings, loadRecord);
}

bool OfflineSystem::IsStarted(const ProcessData& process)
{
    return !process.isExternal && process.name != mainProcessName;
}

String OfflineSystem::GetExecutable(const ProcessData& process)
{
    if (process.isExternal)
    {
        return {};
    }
    return IsStarted(process) && !process.binaryPath.empty()
               ? process.binaryPath
               : Path::Combine(Path::GetDirectoryName(Environment::GetExecutablePath()), applicationName);
}

String OfflineSystem::GetSettingsPath(const ProcessData& process) const
{
    if (process.name == mainProcessName)
    {
        return documents.settings;
    }
    if (process.isExternal || !process.binaryPath.empty())
    {
        return {};
    }
    if (!process.settingsPath.empty())
    {
        return process.settingsPath;
    }
    // Without a word about it a child takes the default of its own working directory, which is that of the main
    // process.
    return Path::GetFullPath(SystemDocuments().settings, process.workingDirectory.empty()
                                                             ? System::Commons::Io::Directory::GetCurrent()
                                                             : process.workingDirectory);
}

} // namespace Vela::Kiroctl
