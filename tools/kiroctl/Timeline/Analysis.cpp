#include "Analysis.hpp"

#include "../Client/Format.hpp"

#include <algorithm>
#include <iterator>
#include <map>

namespace Vela::Kiroctl
{

std::vector<TimedStep> FindSlowest(const Timeline& timeline)
{
    std::vector<TimedStep> steps;
    std::copy_if(timeline.steps.begin(), timeline.steps.end(), std::back_inserter(steps),
                 [](const TimedStep& step) { return step.subject != "phase"; });
    std::stable_sort(steps.begin(), steps.end(),
                     [](const TimedStep& left, const TimedStep& right) { return GetTime(left) > GetTime(right); });
    return steps;
}

std::vector<ChainLink> FindCriticalChain(const Timeline& timeline, double share)
{
    std::int64_t total = 0;
    for (const TimedStep& step : timeline.steps)
    {
        total += step.subject == "phase" ? GetTime(step) : 0;
    }
    const auto threshold = static_cast<std::int64_t>(share * static_cast<double>(total));
    std::vector<ChainLink> chain;
    for (const TimedStep& phase : timeline.steps)
    {
        if (phase.subject != "phase")
        {
            continue;
        }
        const std::size_t phaseIndex = chain.size();
        chain.push_back({phase, GetTime(phase)});
        const TimedStep* lastProcess = nullptr;
        for (const TimedStep& step : timeline.steps)
        {
            if (step.subject == "phase" || step.phase != phase.step || step.begin < phase.begin ||
                step.begin > phase.end)
            {
                continue;
            }
            if (step.subject == "process")
            {
                lastProcess = lastProcess == nullptr || step.end > lastProcess->end ? &step : lastProcess;
                continue;
            }
            chain[phaseIndex].between -= GetTime(step);
            if (GetTime(step) >= threshold)
            {
                chain.push_back({step});
            }
        }
        if (lastProcess != nullptr)
        {
            chain[phaseIndex].between -= GetTime(*lastProcess);
            chain.push_back({*lastProcess});
        }
    }
    return chain;
}

Json ToChromeTrace(const Timeline& timeline)
{
    Json events = Json::array();
    std::map<std::string, int> processes;
    const auto getId = [&](const std::string& process)
    {
        const auto [entry, isNew] = processes.emplace(process, static_cast<int>(processes.size()) + 1);
        if (isNew)
        {
            events.push_back(Json{{"ph", "M"},
                                  {"name", "process_name"},
                                  {"pid", entry->second},
                                  {"tid", 0},
                                  {"args", {{"name", process}}}});
        }
        return entry->second;
    };
    getId(timeline.system);
    for (const TimedStep& step : timeline.steps)
    {
        const bool isPhase = step.subject == "phase";
        events.push_back(Json{{"ph", "X"},
                              {"name", isPhase ? step.step : step.name + ": " + step.step},
                              {"cat", isPhase ? "phase" : step.phase},
                              {"ts", static_cast<double>(step.begin) / 1e3},
                              {"dur", static_cast<double>(GetTime(step)) / 1e3},
                              {"pid", getId(isPhase ? timeline.system : step.process)},
                              // Phases lie above the steps of the main process, which are inside them.
                              {"tid", isPhase                     ? 0
                                      : step.subject == "process" ? 2
                                                                  : 1},
                              {"args", {{"subject", step.subject}, {"outcome", step.outcome}}}});
    }
    return Json{{"traceEvents", events},
                {"displayTimeUnit", "ms"},
                {"otherData", {{"system", timeline.system}, {"origin", FormatTime(timeline.origin)}}}};
}

} // namespace Vela::Kiroctl
