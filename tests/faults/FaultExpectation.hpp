#pragma once

#include "FaultSteps.hpp"

#include <optional>
#include <string>
#include <vector>

namespace Vela::Testing
{

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
