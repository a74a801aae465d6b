#pragma once

#include <condition_variable>
#include <mutex>

namespace Vela::System::Kiro::Internal::Sm
{

/// Admits one walk over the components at a time. Unlike a mutex it may be tried by the thread that holds it: a
/// component of the main process is called on the thread of the walk and may ask for another one from there.
class LifecycleGate
{
public:
    /// Holds the gate as long as it lives.
    class Pass
    {
    public:
        explicit Pass(LifecycleGate& passedGate) noexcept
            : gate(&passedGate)
        {
        }

        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

        ~Pass()
        {
            gate->Leave();
        }

    private:
        LifecycleGate* gate;
    };

    /// Waits until nobody holds the gate, and takes it.
    void Enter()
    {
        std::unique_lock lock(mutex);
        condition.wait(lock, [this] { return !isHeld; });
        isHeld = true;
    }

    /// Takes the gate unless somebody holds it.
    [[nodiscard]] bool TryEnter()
    {
        const std::lock_guard lock(mutex);
        return !std::exchange(isHeld, true);
    }

private:
    void Leave() noexcept
    {
        const std::lock_guard lock(mutex);
        isHeld = false;
        condition.notify_one();
    }

    std::mutex mutex;
    std::condition_variable condition;
    bool isHeld = false;
};

} // namespace Vela::System::Kiro::Internal::Sm
