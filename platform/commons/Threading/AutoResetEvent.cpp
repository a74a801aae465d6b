#include <Vela/System/Commons/Threading/AutoResetEvent.hpp>

#include <Threading/Deadline.hpp>

namespace Vela::System::Commons::Threading
{

AutoResetEvent::AutoResetEvent(bool signalled)
    : isSet(signalled)
{
}

void AutoResetEvent::Set()
{
    // Notified under the lock: the waiter may destroy the event as soon as it has passed.
    const std::lock_guard lock(mutex);
    isSet = true;
    condition.notify_one();
}

void AutoResetEvent::Reset()
{
    const std::lock_guard lock(mutex);
    isSet = false;
}

void AutoResetEvent::WaitOne()
{
    std::unique_lock lock(mutex);
    condition.wait(lock, [this] { return isSet; });
    isSet = false;
}

bool AutoResetEvent::WaitOne(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(mutex);
    if (!condition.wait_until(lock, DeadlineAfter(timeout), [this] { return isSet; }))
    {
        return false;
    }
    isSet = false;
    return true;
}

} // namespace Vela::System::Commons::Threading
