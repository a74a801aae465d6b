#include "OfflineSystem.hpp"

#include <Config/KiroConfigurationLoader.hpp>
#include <Settings/KiroSettingsLoader.hpp>
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
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

namespace Vela::Kiroctl
{

using System::Commons::Environment;
using System::Commons::EnvironmentData;
using System::Commons::Diagnostics::Attempt;
using System::Commons::Diagnostics::FindingCode;
using System::Commons::Diagnostics::LoadObserver;
using System::Commons::Io::Path;
using System::Kiro::Internal::Settings::KiroSettings;
using System::Kiro::Internal::Settings::KiroSettingsLoader;
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

} // namespace

OfflineSystem::OfflineSystem(const SystemDocuments& systemDocuments, LoadRecord& loadRecord)
    : documents{Path::GetFullPath(systemDocuments.settings), Path::GetFullPath(systemDocuments.configuration)}
{
    const LoadObserver::Scope scope(loadRecord);
    SetupEnvironment(mainProcessName);
    LoadSettings(documents.settings, settings);
    Environment::SetupSettings(settings.GetEnvironmentVariables());
    LoadNamedFiles();
    Attempt(FindingCode::MalformedDocument,
            [&] { KiroConfigurationLoader::Load(documents.configuration, IsSingleProcess(), true, configuration); });
    ProcessesController::FillTable(configuration, IsSingleProcess(), mainProcessName, processes);
    ComponentsController::FillTables(configuration, IsSingleProcess(), mainProcessName, processes);
}

void OfflineSystem::LoadNamedFiles()
{
    const String& logConfiguration = settings.GetLogSettings().GetConfigFile();
    if (!logConfiguration.empty())
    {
        Attempt(FindingCode::InvalidLogConfiguration,
                [&] { System::Commons::Diagnostics::LogManager::CheckConfiguration(logConfiguration); });
    }
    Attempt(FindingCode::InvalidRemotingSettings,
            [&] { System::Rsc::RscManagerOptions::Load(settings.GetRscSettings().GetPath()); });
    if (settings.GetSecuritySettings().HasPath())
    {
        Attempt(FindingCode::InvalidSecuritySettings,
                [&] { System::Rsc::RscManager::CheckSecuritySettings(settings.GetSecuritySettings().GetPath()); });
    }
}

void OfflineSystem::CheckChildSettings(const String& path, LoadRecord& loadRecord)
{
    const LoadObserver::Scope scope(loadRecord);
    // The definitions of the main process are what a child inherits.
    Environment::Dispose();
    SetupEnvironment("Child");
    KiroSettings settings;
    LoadSettings(path, settings);
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
