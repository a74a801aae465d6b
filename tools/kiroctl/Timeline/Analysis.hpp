#pragma once

#include "TimelineFile.hpp"

#include <string>
#include <vector>

namespace Vela::Kiroctl
{

/// The steps of components, libraries and processes, slowest first.
std::vector<TimedStep> FindSlowest(const Timeline& timeline);

/// A part of the chain of what each had to wait for the one before it. Times are nanoseconds.
struct ChainLink
{
    /// A phase with what it took; or inside one a component, library or process that held it up.
    TimedStep step;
    /// Of a phase: what the runtime itself took between the steps.
    std::int64_t between = 0;
};

/// Phases in their order; behind each its steps that took at least `share` of the whole, in the order of the walk. Of
/// processes, which start side by side, the last one to answer.
std::vector<ChainLink> FindCriticalChain(const Timeline& timeline, double share);

/// The events of a trace viewer.
Json ToChromeTrace(const Timeline& timeline);

/// A limit that was not held. Times are nanoseconds.
struct BrokenLimit
{
    /// Empty: the limit is of the phase, or the whole start.
    std::string component;
    /// "total" for the sum.
    std::string phase;
    std::int64_t limit = 0;
    std::int64_t time = 0;
};

/// Compares with limits in milliseconds:
/// {"total": 2000, "phases": {"settings": 500}, "components": {"*": {"total": 100}, "Tank1": {"settings": 50}}}
/// A limit of "*" holds for each component that has none of that phase itself.
/// @throws CommandError (Usage) for a document of another form, (NotFound) for a component or phase that is not in the
/// timeline
std::vector<BrokenLimit> CheckBudget(const Timeline& timeline, const Json& budget, const std::string& file);

} // namespace Vela::Kiroctl
