#pragma once

#include "FaultCell.hpp"

#include <optional>
#include <string>
#include <vector>

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

/// What must come of a cell.
struct FaultExpectation
{
    explicit FaultExpectation(const FaultCell& cell);

    Outcome outcome;
    /// Of the main process; the negative number of a signal that ended it.
    int exitCode;
    ExpectedSteps first;
    ExpectedSteps faulty;
    ExpectedSteps last;
    /// The lines of the three in the trace, in the order of the whole system; none where processes end at their own
    /// pace.
    std::optional<std::string> trace;
    std::vector<std::string> lines;
    std::vector<std::string> absentTexts;
    /// A process crashes, or a set-up fails.
    bool leavesRecord;

    /// Nobody is left who could have cleared the runtime directory.
    [[nodiscard]] bool MayLeaveNames() const;
};

} // namespace Vela::Testing
