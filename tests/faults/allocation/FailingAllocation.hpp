#pragma once

namespace Vela::Testing::FailingAllocation
{

/// From now on counts the allocations of all threads and lets one fail, whose stack goes to the standard
/// error output.
/// @param ordinal  counted from 1; 0: none fails
void Arm(long ordinal);

/// How many there were since.
[[nodiscard]] long GetCount();

} // namespace Vela::Testing::FailingAllocation
