#pragma once

#include <array>
#include <string_view>

namespace Vela::Kiroctl
{

/// How the tool ends. Scripts rely on the numbers: append, never renumber.
enum class ExitCode : int
{
    Success = 0,
    Negative = 1,
    Usage = 2,
    Unreachable = 3,
    NotFound = 4,
    Refused = 5,
    Failed = 6,
    BudgetOfComponents = 7,
    BudgetOfBoth = 8,
};

struct ExitCodeMeaning
{
    ExitCode code;
    std::string_view meaning;
};

/// The list that help, manual and documents show.
inline constexpr std::array exitCodeMeanings{
    ExitCodeMeaning{ExitCode::Success, "Done; what was asked about is in order."},
    ExitCodeMeaning{ExitCode::Negative, "What was asked about has errors or does not hold."},
    ExitCodeMeaning{ExitCode::Usage, "The command line is wrong."},
    ExitCodeMeaning{ExitCode::Unreachable, "No system answers in the runtime directory."},
    ExitCodeMeaning{ExitCode::NotFound, "There is nothing of the given name."},
    ExitCodeMeaning{ExitCode::Refused, "The system or a file's permissions do not allow it."},
    ExitCodeMeaning{ExitCode::Failed, "The command failed for another reason."},
    ExitCodeMeaning{ExitCode::BudgetOfComponents, "A component has broken a limit of the budget."},
    ExitCodeMeaning{ExitCode::BudgetOfBoth, "A component and a phase have broken limits of the budget."},
};

} // namespace Vela::Kiroctl
