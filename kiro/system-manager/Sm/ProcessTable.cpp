#include <Config/KiroConfiguration.hpp>
#include <Sm/ProcessesController.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

using Data::ProcessData;

void ProcessesController::SetupConfig(const Config::KiroConfiguration& configuration, bool singleProcess)
{
    FillTable(configuration, singleProcess, host.GetName(), processes);
}

void ProcessesController::FillTable(const Config::KiroConfiguration& configuration, bool singleProcess,
                                    const String& mainProcessName, Data::ProcessTable& table)
{
    for (const auto& [name, configured] : configuration.processes.GetItems())
    {
        auto process = std::make_shared<ProcessData>();
        process->name = name.empty() || singleProcess ? mainProcessName : name;
        process->settingsPath = configured.settingsPath;
        process->core = configured.core;
        process->localTcpPort = configured.localTcpPort;
        process->debugBreak = configured.debugBreak;
        process->args = configured.args;
        process->processOwner = configured.processOwner;
        process->workingDirectory = configured.workingDirectory;
        process->binaryPath = configured.binaryPath;
        // The main process is this one, whatever its entry says.
        process->isExternal = configured.isExternal && process->name != mainProcessName;
        if (!singleProcess)
        {
            WarnOfIneffectiveAttributes(*process, process->name == mainProcessName, configured.position);
        }
        table.emplace(process->name, process);
    }
    if (!table.contains(mainProcessName))
    {
        auto mainProcess = std::make_shared<ProcessData>();
        mainProcess->name = mainProcessName;
        table.emplace(mainProcessName, std::move(mainProcess));
    }
}

void ProcessesController::WarnOfIneffectiveAttributes(const ProcessData& process, bool isMain,
                                                      const Commons::Xml::XmlPosition& position)
{
    const bool isForeign = isMain || process.isExternal;
    const bool isOther = isForeign || !process.binaryPath.empty();
    const std::pair<const char*, bool> attributes[] = {
        {"processOwner", !process.processOwner.empty()},
        {"workingDirectory", isForeign && !process.workingDirectory.empty()},
        {"binaryPath", isForeign && !process.binaryPath.empty()},
        {"args", isForeign && !process.args.empty()},
        {"settingsPath", isOther && !process.settingsPath.empty()},
        {"core", process.core < 0 || (isOther && process.core != 0)},
        {"localTcpPort", process.localTcpPort < 0 || (isOther && process.localTcpPort != 0)},
        {"debugBreak", isOther && process.debugBreak},
    };
    for (const auto& [name, isIneffective] : attributes)
    {
        if (isIneffective)
        {
            const char* where = isMain               ? " on the main process"
                                : process.isExternal ? " on an external process"
                                : isOther            ? " on a process with an executable of its own"
                                                     : "";
            Warn(log, Commons::Diagnostics::FindingCode::IneffectiveAttribute, position,
                 "Process '{0}': attribute '{1}' has no effect{2}.", process.name, name, where);
        }
    }
}

} // namespace Vela::System::Kiro::Internal::Sm
