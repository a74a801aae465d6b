#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace Vela::System::Commons::Threading
{

/// A thread that calls one function again and again, waiting its idle time between the calls; the wait ends early when
/// the worker is stopped or woken.
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
    /// Ends the present wait.
    void Wake();
    [[nodiscard]] bool IsRunning() const;

private:
    void Run();

    const String name;
    const std::function<void()> function;
    const std::chrono::milliseconds idleTime;
    mutable std::mutex mutex;
    std::condition_variable condition;
    bool isStopping = false;
    bool isWoken = false;
    Thread thread;
};

} // namespace Vela::System::Commons::Threading
