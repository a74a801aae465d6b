#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace Vela::System::Commons::Threading
{

/// A thread that calls one function again and again, waiting its idle time between the calls, at least a millisecond;
/// the wait ends early when the worker is stopped or woken. The first call comes at once.
///
/// Thread-safe. An exception out of the function ends the process through the terminate handler.
class VELA_COMMONS_API WorkerThread
{
public:
    WorkerThread(String threadName, std::function<void()> workFunction, std::chrono::milliseconds idle);
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    /// Stops.
    ~WorkerThread();

    /// Nothing happens when it runs already.
    void Start();
    /// Waits for the call in progress; nothing happens when it does not run. Not from the worker itself.
    void Stop();
    /// Ends the present wait; during a call, the wait that follows it.
    void Wake();
    [[nodiscard]] bool IsRunning() const noexcept;

private:
    void Run();

    const String name;
    const std::function<void()> function;
    const std::chrono::milliseconds idleTime;
    /// Held over the whole of Start and Stop; guards the thread.
    std::mutex controlMutex;
    Thread thread;
    std::atomic<bool> isRunning{false};
    /// Guards the two requests to the running thread.
    std::mutex mutex;
    std::condition_variable condition;
    bool isStopping = false;
    bool isWoken = false;
};

} // namespace Vela::System::Commons::Threading
