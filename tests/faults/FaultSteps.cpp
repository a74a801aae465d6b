#include "FaultSteps.hpp"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

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

} // namespace

bool ExpectedSteps::Matches(const std::string& steps) const
{
    return steps.starts_with(least) && most.starts_with(steps);
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

} // namespace Vela::Testing
