#pragma once

#include <condition_variable>
#include <mutex>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

/// Admits one walk over the components at a time; the standard's lock guards serve it. Unlike a mutex it may be tried
/// by the thread that holds it: a component of the main process is called on the thread of the walk and may ask for
/// another one from there.
class LifecycleGate
{
public:
    /// Waits until nobody holds the gate, and takes it.
    void lock()
    {
        std::unique_lock guard(mutex);
        condition.wait(guard, [this] { return !isHeld; });
        isHeld = true;
    }

    /// Takes the gate unless somebody holds it.
    [[nodiscard]] bool try_lock()
    {
        const std::lock_guard guard(mutex);
        return !std::exchange(isHeld, true);
    }

    void unlock()
    {
        const std::lock_guard guard(mutex);
        isHeld = false;
        condition.notify_one();
    }

private:
    std::mutex mutex;
    std::condition_variable condition;
    bool isHeld = false;
};

} // namespace Vela::System::Kiro::Internal::Sm
