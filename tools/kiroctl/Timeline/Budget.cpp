#include "../CommandError.hpp"
#include "Analysis.hpp"

#include <map>
#include <set>

namespace Vela::Kiroctl
{

namespace
{

/// Nanoseconds by phase; "total" is the sum.
using Times = std::map<std::string, std::int64_t>;

constexpr const char* totalName = "total";
constexpr const char* anyComponent = "*";

std::int64_t ReadLimit(const Json& value, const std::string& file, const std::string& name)
{
    if (!value.is_number() || value.get<double>() < 0)
    {
        throw CommandError(ExitCode::Usage, "Budget '{}': the limit '{}' must be a number of milliseconds.", file,
                           name);
    }
    return static_cast<std::int64_t>(value.get<double>() * 1e6);
}

Times ReadLimits(const Json& values, const std::string& file, const std::string& name)
{
    if (!values.is_object())
    {
        throw CommandError(ExitCode::Usage, "Budget '{}': '{}' must hold limits by phase.", file, name);
    }
    Times limits;
    for (const auto& [phase, value] : values.items())
    {
        if (phase != totalName && !IsStartPhase(phase))
        {
            throw CommandError(ExitCode::NotFound, "Budget '{}': there is no phase '{}' in a start.", file, phase);
        }
        limits[phase] = ReadLimit(value, file, fmt::format("{}.{}", name, phase));
    }
    return limits;
}

void Compare(const std::string& component, const Times& limits, const Times& times, std::vector<BrokenLimit>& broken)
{
    for (const auto& [phase, limit] : limits)
    {
        const auto found = times.find(phase);
        if (const std::int64_t time = found == times.end() ? 0 : found->second; time > limit)
        {
            broken.push_back({component, phase, limit, time});
        }
    }
}

} // namespace

std::vector<BrokenLimit> CheckBudget(const Timeline& timeline, const Json& budget, const std::string& file)
{
    if (!budget.is_object())
    {
        throw CommandError(ExitCode::Usage, "Budget '{}' is no JSON object.", file);
    }
    Times phaseTimes;
    std::map<std::string, Times> componentTimes;
    for (const TimedStep& step : timeline.steps)
    {
        if (step.subject == "phase")
        {
            phaseTimes[step.step] += GetTime(step);
            phaseTimes[totalName] += GetTime(step);
        }
        else if (step.subject == "component")
        {
            componentTimes[step.name][step.phase] += GetTime(step);
            componentTimes[step.name][totalName] += GetTime(step);
        }
    }

    Times phaseLimits;
    std::map<std::string, Times> componentLimits;
    for (const auto& [name, value] : budget.items())
    {
        if (name == totalName)
        {
            phaseLimits[totalName] = ReadLimit(value, file, name);
        }
        else if (name == "phases")
        {
            phaseLimits.merge(ReadLimits(value, file, name));
        }
        else if (name == "components" && value.is_object())
        {
            for (const auto& [component, limits] : value.items())
            {
                componentLimits[component] = ReadLimits(limits, file, component);
            }
        }
        else
        {
            throw CommandError(ExitCode::Usage, "Budget '{}': '{}' is unknown; it has total, phases and components.",
                               file, name);
        }
    }

    std::vector<BrokenLimit> broken;
    Compare("", phaseLimits, phaseTimes, broken);
    const Times general = componentLimits.contains(anyComponent) ? componentLimits[anyComponent] : Times();
    componentLimits.erase(anyComponent);
    for (const auto& [component, limits] : componentLimits)
    {
        if (!componentTimes.contains(component))
        {
            throw CommandError(ExitCode::NotFound, "Budget '{}': there is no component '{}' in the timeline.", file,
                               component);
        }
    }
    for (const auto& [component, times] : componentTimes)
    {
        // Limits of its own come first; merging keeps them.
        Times limits = componentLimits[component];
        limits.insert(general.begin(), general.end());
        Compare(component, limits, times, broken);
    }
    return broken;
}

} // namespace Vela::Kiroctl
