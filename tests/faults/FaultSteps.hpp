#pragma once

#include "FaultCell.hpp"

#include <map>
#include <optional>
#include <string>

namespace Vela::Testing
{

/// The steps of one component. Where processes end at their own pace its trace lies between two bounds; elsewhere these
/// are the same.
struct ExpectedSteps
{
    std::string least;
    std::string most;

    [[nodiscard]] bool Matches(const std::string& steps) const;
};

/// How a system ends.
enum class Outcome
{
    EndsInOrder,   ///< comes up, and everything is taken down
    RemovesFaulty, ///< the same without the faulty component
    NeverStarts,   ///< its processes do not all come up
    SetupFails,    ///< what was set up is taken back
    WatchdogEnds,  ///< the main process kills all and aborts
    MainDies,      ///< everything stops where it is
};

/// A component in the order of the execution list, seen from the faulty one.
enum class Rank
{
    First,
    Faulty,
    Last,
};

/// The steps of one of the three components.
ExpectedSteps GetSteps(const FaultCell& cell, Outcome outcome, Rank rank);

/// The lines of all of them in the trace, in the order of the whole system; none where processes end at their own pace.
std::optional<std::string> GetTrace(const FaultCell& cell, Outcome outcome,
                                    const std::map<Rank, ExpectedSteps>& components);

} // namespace Vela::Testing
