#pragma once

#include <Vela/System/Commons/Api.hpp>

#include <chrono>

namespace Vela::System::Commons::Chrono
{

/// Tells whether a span of time is over, by the monotonic clock.
class VELA_COMMONS_API TimeoutWatch
{
public:
    /// Starts too.
    explicit TimeoutWatch(std::chrono::nanoseconds timeout) noexcept;

    /// Begins the span anew.
    void Start() noexcept;
    /// True once the time since Start has reached the time-out; at once for a time-out of 0.
    [[nodiscard]] bool HasTimeout() const noexcept;
    /// What is left, rounded up to whole milliseconds, never negative.
    [[nodiscard]] std::chrono::milliseconds GetRemaining() const noexcept;

private:
    std::chrono::nanoseconds timeout;
    std::chrono::steady_clock::time_point start;
};

} // namespace Vela::System::Commons::Chrono
