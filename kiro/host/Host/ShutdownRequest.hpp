#pragma once

#include <Vela/System/Commons/Threading/AutoResetEvent.hpp>

#include <atomic>
#include <memory>
#include <mutex>

namespace Vela::System::Kiro::Internal
{

/// The request that ends a process, and whether the system shall start again afterwards.
///
/// A request is never lost: one that comes before the event exists is found by whoever waits on the event later.
/// Requests come from any thread; creating, waiting and releasing belong to the main thread.
class ShutdownRequest
{
public:
    /// Makes the event, set already when the end was requested before.
    void CreateEvent();
    void ReleaseEvent();
    /// @throws InvalidOperationException when there is no event
    void Wait();

    /// The whole system ends and starts again.
    void RequestRestart();
    /// The whole system ends. Console hosts do not look at this.
    void RequestSystemShutdown();
    /// This process ends.
    void RequestProcessShutdown();
    /// A console host ends.
    void RequestConsoleShutdown() noexcept;

    [[nodiscard]] bool IsRestartRequested() const noexcept;
    /// Whether the last of the requests that concern the whole system was one for its end alone. Unlike the flag of the
    /// restart this says so also when processes have been told to end meanwhile.
    [[nodiscard]] bool IsSystemShutdownLast() const noexcept;
    /// The flag that console hosts poll.
    [[nodiscard]] bool IsShutdownRequested() const noexcept;
    /// Whether any of the requests was made that signal the event.
    [[nodiscard]] bool IsEnding() const;

private:
    void Signal();

    std::atomic<bool> shutdownRequested{false};
    std::atomic<bool> restartRequested{false};
    std::atomic<bool> isSystemShutdownLast{false};
    mutable std::mutex mutex;
    bool isEnding = false;
    std::shared_ptr<Commons::Threading::AutoResetEvent> event;
};

} // namespace Vela::System::Kiro::Internal
