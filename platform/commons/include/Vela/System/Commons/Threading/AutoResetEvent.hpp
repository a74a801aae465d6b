#pragma once

#include <Vela/System/Commons/Api.hpp>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Vela::System::Commons::Threading
{

/// An event that lets one waiter pass for each time it is set. Thread-safe.
class VELA_COMMONS_API AutoResetEvent
{
public:
    explicit AutoResetEvent(bool signalled);

    void Set();
    void Reset();
    /// Blocks until the event is set, and resets it.
    void WaitOne();
    /// The same with a limit; false when the time was over first.
    bool WaitOne(std::chrono::milliseconds timeout);

private:
    std::mutex mutex;
    std::condition_variable condition;
    bool isSet;
};

} // namespace Vela::System::Commons::Threading
