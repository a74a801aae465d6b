#pragma once

#include <algorithm>
#include <chrono>

namespace Vela::System::Commons::Threading
{

/// The point in time a wait ends at; a wait without end in practice is cut to a year, so that the sum stays in range.
inline std::chrono::steady_clock::time_point DeadlineAfter(std::chrono::milliseconds time)
{
    return std::chrono::steady_clock::now() + std::min<std::chrono::milliseconds>(time, std::chrono::hours(24 * 365));
}

} // namespace Vela::System::Commons::Threading
