#include "FaultExpectation.hpp"

#include <csignal>

namespace Vela::Testing
{

namespace
{

using Lines = std::vector<std::string>;

std::string DescribeThrown(const FaultCell& cell, const std::string& describes)
{
    switch (cell.fault)
    {
    case Fault::ThrowPlatform:
        return "Exception occurs while " + describes + " 'Faulty': InvalidOperationException: the pump is gone";
    case Fault::ThrowStandard:
        return "Exception occurs while " + describes + " 'Faulty': the pump is gone";
    case Fault::ThrowUnknown:
        return "Unspecified exception occurs while " + describes + " 'Faulty'";
    default:
        return "Exception occurs while " + describes + " 'Faulty': RscException: ";
    }
}

Outcome GetOutcome(const FaultCell& cell)
{
    if (cell.GetKilledProcess() == "MainProcess" || cell.fault == Fault::TerminateTwice)
    {
        return Outcome::MainDies;
    }
    if (cell.fault == Fault::Hang)
    {
        // Nothing but another signal ends a wait for a component; a start has its time.
        return cell.phase == Phase::Connect ? Outcome::NeverStarts : Outcome::MainDies;
    }
    if (!cell.IsOwnFault() && cell.GetKilledProcess().empty())
    {
        return Outcome::EndsInOrder;
    }
    if (cell.IsLeftToTheWatchdog())
    {
        return Outcome::WatchdogEnds;
    }
    switch (cell.GetPhase().group)
    {
    case Group::Before:
        return cell.phase == Phase::Connect ? Outcome::NeverStarts : Outcome::SetupFails;
    case Group::Create:
        return Outcome::SetupFails;
    case Group::Settings:
    case Group::Config:
        return cell.isRequired ? Outcome::SetupFails : Outcome::RemovesFaulty;
    case Group::Start:
        return cell.isRequired ? Outcome::EndsInOrder : Outcome::RemovesFaulty;
    default:
        return Outcome::EndsInOrder;
    }
}

int GetExitCode(const FaultCell& cell, Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::EndsInOrder:
        // With a process gone not everything can be taken down.
        return cell.GetKilledProcess().empty() ? 0 : 1;
    case Outcome::RemovesFaulty:
        return 0;
    case Outcome::NeverStarts:
    case Outcome::SetupFails:
        return 1;
    case Outcome::WatchdogEnds:
        return -SIGABRT;
    case Outcome::MainDies:
        break;
    }
    switch (cell.fault)
    {
    case Fault::KillMain:
        return -SIGKILL;
    case Fault::Crash:
        return -SIGSEGV;
    case Fault::Exit:
        return 0;
    case Fault::Hang:
    case Fault::TerminateTwice:
        return 128 + SIGTERM;
    default:
        return -SIGABRT;
    }
}

/// The backward phases that a lost component fails in, one after the other.
Lines DescribeStepsThatAreLost(const FaultCell& cell, Outcome outcome)
{
    Lines lines;
    const Group group = cell.GetPhase().group;
    for (const Phase phase : {Phase::Stop, Phase::ResetConfig, Phase::Dispose, Phase::Destroy})
    {
        const FaultCell later{phase, Fault::KillChild, cell.place, true};
        const bool wasReached = outcome == Outcome::EndsInOrder ||
                                (phase == Phase::ResetConfig && group == Group::Config) ||
                                (phase > Phase::ResetConfig && group > Group::Create);
        if (wasReached && phase > cell.phase)
        {
            lines.push_back(DescribeThrown(later, later.GetPhase().describes));
        }
    }
    lines.push_back("Process '" + cell.GetProcess() + "' could not be asked to end: ");
    return lines;
}

Lines DescribeTheFaultItself(const FaultCell& cell)
{
    const std::string killed = cell.GetKilledProcess();
    const bool isInCall = killed.empty() || killed == cell.GetProcess();
    if (cell.IsFatalThrow())
    {
        return {cell.fault == Fault::ThrowUnknown ? "Terminate application after unknown exception"
                                                  : "Terminate application after unexpected exception:"};
    }
    switch (cell.phase)
    {
    case Phase::Connect:
    case Phase::Idle:
        return {};
    case Phase::Load:
        return {"Library 'Recording' couldn't loaded in process " + cell.GetProcess() + "."};
    case Phase::Create:
        return {cell.fault == Fault::ThrowUnknown ? "Unspecified exception occurs." : "Exception occurs: "};
    default:
        return isInCall ? Lines{DescribeThrown(cell, cell.GetPhase().describes)} : Lines{};
    }
}

Lines GetLines(const FaultCell& cell, Outcome outcome)
{
    Lines lines;
    const bool isUndisturbed = !cell.IsOwnFault() && cell.GetKilledProcess().empty();
    const bool hasFailed = !isUndisturbed && (outcome == Outcome::EndsInOrder || outcome == Outcome::RemovesFaulty ||
                                              outcome == Outcome::SetupFails);
    if (hasFailed || cell.IsFatalThrow())
    {
        lines = DescribeTheFaultItself(cell);
    }
    if (hasFailed && !cell.GetKilledProcess().empty())
    {
        const Lines lost = DescribeStepsThatAreLost(cell, outcome);
        lines.insert(lines.end(), lost.begin(), lost.end());
    }
    if (outcome == Outcome::RemovesFaulty)
    {
        lines.emplace_back("Component 'Faulty' will be disposed and removed.");
    }
    if (outcome == Outcome::SetupFails && cell.GetPhase().group == Group::Settings)
    {
        lines.push_back(DescribeThrown(cell, "setting up settings of component"));
    }
    if (outcome == Outcome::SetupFails || outcome == Outcome::NeverStarts)
    {
        lines.emplace_back("Fatal error occurs in application 'MainProcess':");
    }
    if (outcome == Outcome::NeverStarts)
    {
        lines.push_back(cell.fault == Fault::Hang
                            ? "Process '" + cell.GetProcess() + "' has not ended in time and is killed."
                            : "Process '" + cell.GetProcess() + "' has exited unexpectedly at startup.");
        lines.push_back("Could not start process '" + cell.GetProcess() + "'.");
        lines.emplace_back("Could not start all processes");
    }
    if (outcome == Outcome::WatchdogEnds)
    {
        lines.push_back("Process '" + cell.GetKilledProcess() + "' has exited unexpectedly.");
        lines.emplace_back("All other living processes terminated immediately.");
    }
    if (outcome == Outcome::MainDies && cell.phase == Phase::Connect)
    {
        // It was not tied to the life of the main process yet, so it looks for itself.
        lines.emplace_back("that started this child process has ended.");
    }
    if (cell.fault == Fault::Terminate || cell.fault == Fault::InterruptGroup)
    {
        lines.emplace_back("requests the shutdown of the system.");
    }
    if (cell.fault == Fault::TerminateTwice || (cell.fault == Fault::Hang && cell.phase != Phase::Connect))
    {
        lines.emplace_back("Second signal (15): the process ends at once.");
    }
    return lines;
}

bool LeavesRecord(const FaultCell& cell, Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::NeverStarts:
    case Outcome::SetupFails:
    case Outcome::WatchdogEnds:
        return true;
    case Outcome::EndsInOrder:
        return !cell.GetKilledProcess().empty();
    default:
        break;
    }
#ifdef VELA_SANITIZED
    constexpr bool isRecorded = false;
#else
    constexpr bool isRecorded = true;
#endif
    return isRecorded && (cell.fault == Fault::Crash || cell.IsFatalThrow());
}

} // namespace

FaultExpectation::FaultExpectation(const FaultCell& cell)
    : outcome(GetOutcome(cell))
    , exitCode(GetExitCode(cell, outcome))
    , first(GetSteps(cell, outcome, Rank::First))
    , faulty(GetSteps(cell, outcome, Rank::Faulty))
    , last(GetSteps(cell, outcome, Rank::Last))
    , trace(GetTrace(cell, outcome, {{Rank::First, first}, {Rank::Faulty, faulty}, {Rank::Last, last}}))
    , lines(GetLines(cell, outcome))
    , leavesRecord(LeavesRecord(cell, outcome))
{
    const bool isCertain = outcome == Outcome::EndsInOrder || outcome == Outcome::RemovesFaulty;
    if (isCertain && cell.GetKilledProcess().empty())
    {
        absentTexts.emplace_back("Fatal");
        if (!cell.IsOwnFault())
        {
            absentTexts.emplace_back("Error");
        }
    }
    if (outcome == Outcome::MainDies)
    {
        absentTexts.emplace_back("has exited unexpectedly.");
    }
}

bool FaultExpectation::MayLeaveNames() const
{
    return outcome == Outcome::MainDies || outcome == Outcome::WatchdogEnds;
}

} // namespace Vela::Testing
