#include "SystemCheck.hpp"

#include "Check/FileKind.hpp"
#include "Helper/HelperProcess.hpp"

#include <Settings/SystemDirectory.hpp>
#include <Sm/ChildCommandLine.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <sys/stat.h>
#include <unistd.h>

namespace Vela::Kiroctl
{

using System::Commons::Environment;
using System::Commons::Diagnostics::Attempt;
using System::Commons::Diagnostics::LoadObserver;
using System::Commons::Io::FileTrust;
using System::Commons::Io::TrustedFile;
using System::Commons::Xml::XmlPosition;
using System::Kiro::Internal::Settings::EnvironmentVariable;
using System::Kiro::Internal::Sm::Config::Component;
using System::Kiro::Internal::Sm::Config::Components;
using System::Kiro::Internal::Sm::Data::ProcessData;
using System::Rsc::RscManager;

namespace
{

/// A path whose variable is unknown: that has been said.
bool IsUnresolved(const String& path)
{
    return path.find("${") != String::npos;
}

bool IsDirectory(const String& path)
{
    struct stat status
    {
    };
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsExecutable(const String& path)
{
    struct stat status
    {
    };
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

/// What the runtime and the platform read themselves, and switches, which are there to be asked by anybody.
bool IsReadByProgram(const EnvironmentVariable& variable)
{
    const String& name = variable.GetName();
    return variable.IsComponentVariable() || name == Environment::runtimeDirectoryName ||
           name == Environment::binDirectoryName || name == RscManager::gatewayPortVariable ||
           name == System::Kiro::Internal::Settings::SystemDirectory::variableName || name == "VELA_PATH_PROJECT_DIR";
}

} // namespace

SystemCheck::SystemCheck(const OfflineSystem& offlineSystem, LoadRecord& loadRecord, bool mayLoad)
    : system(offlineSystem)
    , record(loadRecord)
    , mayLoadLibraries(mayLoad)
    , checkedSettings{system.documents.settings}
{
}

void SystemCheck::Run()
{
    const LoadObserver::Scope scope(record);
    CheckProcesses();
    CheckComponents();
    CheckLibraries();
    CheckVariables();
}

void SystemCheck::CheckProcesses()
{
    for (const auto& [name, process] : system.processes)
    {
        if (OfflineSystem::IsStarted(*process))
        {
            CheckProcess(*process);
        }
    }
}

void SystemCheck::CheckProcess(const ProcessData& process)
{
    const auto& configured = system.configuration.processes.GetItems();
    const auto found = configured.find(process.name);
    const XmlPosition position = found == configured.end() ? XmlPosition() : found->second.position;
    const String& directory = process.workingDirectory;
    if (!directory.empty() && !IsUnresolved(directory) && !IsDirectory(directory))
    {
        record.Add(FindingCode::MissingDirectory, position,
                   fmt::format("Process '{}': the working directory '{}' {}.", process.name, directory,
                               DescribeFileKind(directory)));
    }
    const String executable = OfflineSystem::GetExecutable(process);
    if (!IsUnresolved(executable) && !IsExecutable(executable))
    {
        record.Add(FindingCode::InvalidExecutable, position,
                   fmt::format("Process '{}': '{}' is not an executable file.", process.name, executable));
    }
    else if (!process.binaryPath.empty())
    {
        FileTrust::Require(TrustedFile::Executable, executable);
    }
    constexpr int highestPort = 65535;
    if (process.binaryPath.empty() && process.localTcpPort > highestPort)
    {
        record.Add(FindingCode::InvalidValue, position,
                   fmt::format("Process '{}': {} is no TCP port.", process.name, process.localTcpPort));
    }
    Attempt(
        FindingCode::InvalidValue,
        [&]
        {
            using namespace System::Kiro::Internal::Sm;
            System::Commons::Runtime::SplitArguments(process.binaryPath.empty() ? BuildChildArguments(process)
                                                                                : process.args);
        },
        position);
    CheckChildSettings(process);
}

void SystemCheck::CheckChildSettings(const ProcessData& process)
{
    const String path = system.GetSettingsPath(process);
    if (path.empty() || IsUnresolved(path) || !checkedSettings.insert(path).second)
    {
        return;
    }
    const HelperResult result = RunInHelper(
        [&path]
        {
            LoadRecord childRecord;
            OfflineSystem::CheckChildSettings(path, childRecord);
            return childRecord.WriteFindings();
        });
    if (result.answer)
    {
        const auto& configured = system.configuration.processes.GetItems();
        const auto found = configured.find(process.name);
        for (Json finding : *result.answer)
        {
            // What concerns the document as a whole is best looked for where it is named.
            if (XmlPosition::Parse(finding.at("position")).GetLine() == 0 && found != configured.end())
            {
                finding["position"] = found->second.position.ToString();
            }
            record.Add(Json::array({finding}));
        }
    }
}

void SystemCheck::CheckComponents()
{
    for (const auto& [processName, process] : system.processes)
    {
        for (const auto& [name, data] : process->components)
        {
            const Component& component = system.configuration.components.GetItems().at(name);
            const String& settingsPath = data->settingsPath;
            if (!settingsPath.empty() && !IsUnresolved(settingsPath) &&
                !System::Commons::Io::File::Exists(settingsPath))
            {
                record.Add(FindingCode::MissingSettingsFile, component.position,
                           fmt::format("Component '{}': the settings file '{}' {}.", name, settingsPath,
                                       DescribeFileKind(settingsPath)));
            }
            if (process->isExternal && !IsCopy(component))
            {
                record.Add(
                    FindingCode::UnrunComponent, component.position,
                    fmt::format("Component '{}' is not created: its process '{}' is external.", name, processName));
            }
            if (!process->isExternal && !data->isEnabled)
            {
                record.Add(FindingCode::UnrunComponent, component.position,
                           fmt::format("Component '{}' is disabled: it is created and never runs.", name));
            }
            if (data->library.empty() && !data->type.empty() && !process->isExternal)
            {
                record.Add(FindingCode::UnknownComponentType, component.position,
                           fmt::format("Component '{}' names no library, and the runtime has no component of type "
                                       "'{}' of its own.",
                                       name, data->type));
            }
        }
    }
}

/// Nobody asked for the copy of a generic component in just this process.
bool SystemCheck::IsCopy(const Component& component) const
{
    const auto& generics = system.configuration.components.GetMultiProcessItems();
    const String name = component.name.substr(0, component.name.rfind(Components::processSeparator));
    return generics.contains(component.name) || generics.contains(name);
}

void SystemCheck::CheckVariables()
{
    // It may as well come from the environment.
    XmlPosition gatewayPosition;
    const auto& variables = system.settings.GetEnvironmentVariables();
    for (const auto* map : {&variables.GetVariables(), &variables.GetOverriddenVariables()})
    {
        for (const auto& [name, variable] : *map)
        {
            if (name == RscManager::gatewayPortVariable)
            {
                gatewayPosition = variable.GetPosition();
            }
            if (!IsReadByProgram(variable) && !record.IsVariableUsed(name))
            {
                record.Add(FindingCode::UnusedVariable, variable.GetPosition(),
                           fmt::format("No document names the environment variable '{}'.", name));
            }
        }
    }
    Attempt(
        FindingCode::InvalidGatewayPort, [] { RscManager::FindGatewayPort(); }, gatewayPosition);
}

} // namespace Vela::Kiroctl
