#include <Vela/System/Commons/Chrono/TimeoutWatch.hpp>

#include <algorithm>

namespace Vela::System::Commons::Chrono
{

TimeoutWatch::TimeoutWatch(std::chrono::nanoseconds timeout) noexcept
    : timeout(timeout)
    , start(std::chrono::steady_clock::now())
{
}

void TimeoutWatch::Start() noexcept
{
    start = std::chrono::steady_clock::now();
}

bool TimeoutWatch::HasTimeout() const noexcept
{
    return std::chrono::steady_clock::now() - start >= timeout;
}

std::chrono::milliseconds TimeoutWatch::GetRemaining() const noexcept
{
    const auto remaining = timeout - (std::chrono::steady_clock::now() - start);
    // Rounded up, so that waiting for it is never followed by another, shorter wait.
    return std::max(std::chrono::ceil<std::chrono::milliseconds>(remaining), std::chrono::milliseconds(0));
}

} // namespace Vela::System::Commons::Chrono
