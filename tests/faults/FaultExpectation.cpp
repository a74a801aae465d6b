#include "FaultExpectation.hpp"

#include <algorithm>
#include <csignal>
#include <map>
#include <sstream>
#include <utility>

namespace Vela::Testing
{

namespace
{

using Steps = std::vector<std::string>;

const Steps settingsSteps{"Initialize", "SubscribeServices", "LoadSettings", "SetupSettings", "PublishServices"};
const Steps configSteps{"LoadConfig", "SetupConfig"};

/// The phases in which the execution list is walked as a whole, in their order, with the steps of a component in each.
struct Walk
{
    Phase last;
    Steps steps;
};

const Walk walks[] = {
    {Phase::PublishServices, settingsSteps}, {Phase::SetupConfig, configSteps}, {Phase::Start, {"Start"}},
    {Phase::PowerDown, {"PowerDown"}},       {Phase::Stop, {"Stop"}},           {Phase::ResetConfig, {"ResetConfig"}},
    {Phase::Dispose, {"Dispose"}},           {Phase::Destroy, {"Destroy"}},
};

void Append(Steps& steps, const Steps& more)
{
    steps.insert(steps.end(), more.begin(), more.end());
}

std::string Join(const Steps& steps)
{
    std::string text;
    for (const std::string& step : steps)
    {
        text += (text.empty() ? "" : " ") + step;
    }
    return text;
}

ExpectedSteps Exactly(const Steps& steps)
{
    return {Join(steps), Join(steps)};
}

/// A component in the order of the execution list, seen from the faulty one.
enum class Rank
{
    First,
    Faulty,
    Last,
};

bool HasWalk(const FaultCell& cell, const Walk& walk)
{
    return walk.last != Phase::PowerDown || cell.phase == Phase::PowerDown;
}

/// All steps of an undisturbed life up to a phase.
Steps GetUpTo(const FaultCell& cell, Phase last)
{
    Steps steps{"Create"};
    for (const Walk& walk : walks)
    {
        if (HasWalk(cell, walk) && walk.last <= last)
        {
            Append(steps, walk.steps);
        }
    }
    return steps;
}

Steps GetWhole(const FaultCell& cell)
{
    return GetUpTo(cell, Phase::Destroy);
}

std::string GetProcess(const FaultCell& cell, Rank rank)
{
    return rank == Rank::First    ? cell.GetFirstProcess()
           : rank == Rank::Faulty ? cell.GetProcess()
                                  : cell.GetLastProcess();
}

/// Processes are walked by name for creation.
bool IsCreatedAtFault(const FaultCell& cell, const std::string& process)
{
    return cell.phase > Phase::Create || (cell.phase == Phase::Create && process <= cell.GetProcess());
}

/// What a component has been through when the faulty one is inside its step.
Steps GetMoment(const FaultCell& cell, Rank rank)
{
    if (!IsCreatedAtFault(cell, GetProcess(cell, rank)))
    {
        return {};
    }
    Steps moment{"Create"};
    for (const Walk& walk : walks)
    {
        if (!HasWalk(cell, walk))
        {
            continue;
        }
        if (walk.last < cell.phase)
        {
            Append(moment, walk.steps);
            continue;
        }
        const bool hasBegun = cell.phase != Phase::Create && cell.phase != Phase::Idle;
        const Rank before = cell.IsForward() ? Rank::First : Rank::Last;
        for (const std::string& step : walk.steps)
        {
            if (!hasBegun || (rank != before && rank != Rank::Faulty))
            {
                break;
            }
            moment.push_back(step);
            if (rank == Rank::Faulty && step == cell.GetPhase().step)
            {
                break;
            }
        }
        break;
    }
    return moment;
}

/// A component whose set-up is taken back; what is gone takes part in nothing any more.
Steps GetTakenBack(const FaultCell& cell, Rank rank)
{
    Steps steps = GetMoment(cell, rank);
    const bool isGone = rank == Rank::Faulty && (!cell.GetKilledProcess().empty() || cell.phase == Phase::Create);
    if (steps.empty() || isGone)
    {
        return steps;
    }
    const bool hasSettings = steps.size() > 1;
    const bool hasConfig = steps.size() > 1 + settingsSteps.size();
    Append(steps, hasConfig     ? Steps{"ResetConfig", "Dispose", "Destroy"}
                  : hasSettings ? Steps{"Dispose", "Destroy"}
                                : Steps{"Destroy"});
    return steps;
}

/// How far a component comes at most before the watchdog ends it.
Steps GetFarthest(const FaultCell& cell, Rank rank)
{
    if (rank == Rank::Faulty || cell.GetKilledProcess() != cell.GetProcess())
    {
        // It is gone with its process; or it lives, and holds the walk if there is one.
        return GetMoment(cell, rank);
    }
    if (cell.IsBackward() && rank == Rank::Last && cell.GetLastProcess() == "MainProcess")
    {
        // The first component, which holds the walk, is killed before the main process is.
        return GetWhole(cell);
    }
    // Nobody has asked for a shutdown, or the first component holds it.
    return GetUpTo(cell, std::max(cell.phase, Phase::Start));
}

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

ExpectedSteps GetSteps(const FaultCell& cell, Outcome outcome, Rank rank)
{
    const Steps moment = GetMoment(cell, rank);
    const bool isGone = rank == Rank::Faulty && cell.GetKilledProcess() == cell.GetProcess();
    switch (outcome)
    {
    case Outcome::EndsInOrder:
        return Exactly(isGone ? moment : GetWhole(cell));
    case Outcome::RemovesFaulty:
    {
        Steps steps = rank == Rank::Faulty ? moment : GetWhole(cell);
        Append(steps, rank == Rank::Faulty ? Steps{"Dispose", "Destroy"} : Steps{});
        return Exactly(steps);
    }
    case Outcome::NeverStarts:
        return Exactly({});
    case Outcome::SetupFails:
        return Exactly(GetTakenBack(cell, rank));
    case Outcome::WatchdogEnds:
        return {Join(moment), Join(GetFarthest(cell, rank))};
    case Outcome::MainDies:
        break;
    }
    return Exactly(moment);
}

/// When a component takes a step: in which walk, and its turn in that.
std::pair<Phase, int> GetTurn(const FaultCell& cell, Outcome outcome, Rank rank, const std::string& step)
{
    if (step == "Create")
    {
        // L, M, R: processes are walked by name.
        return {Phase::Create, GetProcess(cell, rank).front()};
    }
    const auto* const walk =
        std::find_if(std::begin(walks), std::end(walks),
                     [&](const Walk& other)
                     { return std::find(other.steps.begin(), other.steps.end(), step) != other.steps.end(); });
    const int turn = static_cast<int>(rank);
    if (walk->last < Phase::Idle)
    {
        return {walk->last, turn};
    }
    if (outcome == Outcome::RemovesFaulty && rank == Rank::Faulty)
    {
        // At the end of the walk in which it has failed.
        const auto* const failed = std::find_if(std::begin(walks), std::end(walks),
                                                [&](const Walk& other) { return other.last >= cell.phase; });
        return {failed->last, static_cast<int>(Rank::Last) + 1};
    }
    return {walk->last, -turn};
}

std::optional<std::string> GetTrace(const FaultCell& cell, Outcome outcome,
                                    const std::map<Rank, ExpectedSteps>& components)
{
    static const std::map<Rank, std::string> names{
        {Rank::First, "First"}, {Rank::Faulty, "Faulty"}, {Rank::Last, "Last"}};
    std::multimap<std::pair<Phase, int>, std::string> lines;
    for (const auto& [rank, expected] : components)
    {
        if (expected.least != expected.most)
        {
            return std::nullopt;
        }
        std::istringstream steps(expected.most);
        for (std::string step; steps >> step;)
        {
            lines.emplace(GetTurn(cell, outcome, rank, step),
                          GetProcess(cell, rank) + " " + names.at(rank) + " " + step + "\n");
        }
    }
    std::string trace;
    for (const auto& [turn, line] : lines)
    {
        trace += line;
    }
    return trace;
}

/// The backward phases that a lost component fails in, one after the other.
Steps DescribeStepsThatAreLost(const FaultCell& cell, Outcome outcome)
{
    Steps lines;
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

Steps DescribeTheFaultItself(const FaultCell& cell)
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
        return isInCall ? Steps{DescribeThrown(cell, cell.GetPhase().describes)} : Steps{};
    }
}

Steps GetLines(const FaultCell& cell, Outcome outcome)
{
    Steps lines;
    const bool isUndisturbed = !cell.IsOwnFault() && cell.GetKilledProcess().empty();
    const bool hasFailed = !isUndisturbed && (outcome == Outcome::EndsInOrder || outcome == Outcome::RemovesFaulty ||
                                              outcome == Outcome::SetupFails);
    if (hasFailed || cell.IsFatalThrow())
    {
        Append(lines, DescribeTheFaultItself(cell));
    }
    if (hasFailed && !cell.GetKilledProcess().empty())
    {
        Append(lines, DescribeStepsThatAreLost(cell, outcome));
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

bool ExpectedSteps::Matches(const std::string& steps) const
{
    return steps.starts_with(least) && most.starts_with(steps);
}

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
