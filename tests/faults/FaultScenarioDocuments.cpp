#include "FaultScenario.hpp"

namespace Vela::Testing
{

namespace
{

/// What the faulty component does; what a shell does that stands for its process; see the recording library.
struct Action
{
    Fault fault;
    const char* script;
    const char* shell;
};

const Action actions[] = {
    {Fault::ThrowPlatform, "throw platform the pump is gone", ""},
    {Fault::ThrowStandard, "throw standard the pump is gone", ""},
    {Fault::ThrowUnknown, "throw unknown", ""},
    {Fault::Hang, "hang", "read never < hold"},
    {Fault::Crash, "crash", "kill -SEGV $$"},
    {Fault::Exit, "exit 0", "exit 0"},
};

} // namespace

void FaultScenario::WriteDocuments(bool isHealthy) const
{
    const bool isSlowExpected = !isHealthy && (cell.fault == Fault::Hang || cell.fault == Fault::StopAndContinue);
    const bool isStartLimited = !isHealthy && cell.phase == Phase::Connect && cell.fault == Fault::Hang;
    // Processes that have not answered cannot be asked to end.
    const bool isNeverAsked = !isHealthy && expected.outcome == Outcome::NeverStarts;
    // Asleep only where it is a failed call that is to find the child gone.
    const bool isWatched = isHealthy || !cell.KillsChild() || cell.IsLeftToTheWatchdog();
    system.WriteSettings(
        std::string("<ProcessSettings singleProcess='false' watchdogDelayTime='0ms' watchdogIdleTime='") +
        (isWatched ? "5ms" : "1h") + "' startWaitTime='" + (isStartLimited ? "300ms" : "1min") + "' stopWaitTime='" +
        (isNeverAsked ? "200ms" : "1min") + "' slowStepTime='" + (isSlowExpected ? "100ms" : "1h") + "'/>");

    const std::string faulty = cell.GetProcess();
    std::string text = "<Processes>";
    for (const char* process : {"MainProcess", "Left", "Right"})
    {
        const bool hasShell = cell.phase == Phase::Connect && process == faulty;
        text += std::string("<Process name='") + process + "'" +
                (hasShell ? " binaryPath='/bin/sh' args='connect.sh'" : "") + "/>";
    }
    text += "</Processes><Libraries><Library name='Recording' binaryPath='" +
            TestSystem::GetBuiltFile("lib/libRecording.so") + "'/></Libraries><Components>";
    const auto addComponent = [&](const char* name, const std::string& process, const char* attributes)
    {
        text += std::string("<Component name='") + name + "' process='" + process +
                "' type='RecordingController' library='Recording' " + attributes + "/>";
    };
    addComponent("First", cell.GetFirstProcess(), "startOrder='10'");
    addComponent("Faulty", faulty, cell.isRequired ? "startOrder='20' isRequired='true'" : "startOrder='20'");
    addComponent("Last", cell.GetLastProcess(), "startOrder='30'");
    system.WriteConfig(text + "</Components>");

    system.directory.Write("script", isHealthy ? "" : MakeScript());
    system.directory.Write("connect.sh", MakeConnectScript(isHealthy));
}

std::string FaultScenario::MakeConnectScript(bool isHealthy) const
{
    const std::string name = cell.GetProcess();
    std::string text = "echo \"" + name + "[$$] Library in " + name + " takes step Connect\"\n";
    for (const Action& action : actions)
    {
        text += action.fault == cell.fault && !isHealthy ? std::string(action.shell) + "\n" : "";
    }
    if (!isHealthy && !cell.IsOwnFault())
    {
        text += "read ignored < gate\n";
    }
    return text + "exec '" + TestSystem::GetBuiltFile("bin/Vela.System.Application") + "' --child=true --name=" + name +
           "\n";
}

bool FaultScenario::IsHeldAtGate() const
{
    return !cell.IsOwnFault() && cell.phase != Phase::Idle;
}

bool FaultScenario::IsShutdownRequested() const
{
    // A signal that begins the shutdown would make the signal of the fault the second one.
    return cell.IsBackward() && (cell.fault == Fault::Terminate || cell.fault == Fault::InterruptGroup);
}

std::string FaultScenario::MakeScript() const
{
    const std::string gate = system.directory / "gate";
    const std::string trigger = system.directory / "trigger";
    std::string fault;
    for (const Action& action : actions)
    {
        fault = action.fault == cell.fault ? action.script : fault;
    }
    std::string text;
    const std::string step = cell.GetPhase().step;
    if (cell.phase == Phase::Idle)
    {
        text += fault.empty() ? "" : "Faulty Start when " + gate + " " + fault + "\n";
    }
    else
    {
        const std::string component = cell.phase == Phase::Load ? "-@" + cell.GetProcess() : "Faulty";
        if (cell.IsOwnFault() && cell.place != Place::Main && !cell.IsLeftToTheWatchdog())
        {
            // As AwaitFirstLook.
            text += component + " " + step + " settle ProcessesWatchd\n";
        }
        text += component + " " + step + " " + (IsHeldAtGate() ? "await " + gate : fault) + "\n";
    }
    if (cell.phase == Phase::PowerDown)
    {
        text += "First Start when " + trigger + " attempt request PowerDown\n";
    }
    if (cell.IsBackward())
    {
        text += IsShutdownRequested() ? "First Start when " + trigger + " attempt request Shutdown\n" : "";
        // The main process must not come to its end before the watchdog has looked.
        text += expected.outcome == Outcome::WatchdogEnds && cell.GetKilledProcess() == cell.GetProcess()
                    ? "First " + step + " await " + (system.directory / "hold") + "\n"
                    : "";
    }
    return text;
}

} // namespace Vela::Testing
