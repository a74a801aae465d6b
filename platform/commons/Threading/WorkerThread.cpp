#include <Vela/System/Commons/Threading/WorkerThread.hpp>

#include <Threading/Deadline.hpp>

#include <algorithm>
#include <utility>

namespace Vela::System::Commons::Threading
{

WorkerThread::WorkerThread(String threadName, std::function<void()> workFunction, std::chrono::milliseconds idle)
    : name(std::move(threadName))
    , function(std::move(workFunction))
    , idleTime(std::max(idle, std::chrono::milliseconds(1)))
{
}

WorkerThread::~WorkerThread()
{
    Stop();
}

void WorkerThread::Start()
{
    const std::lock_guard control(controlMutex);
    if (thread.IsJoinable())
    {
        return;
    }
    {
        const std::lock_guard lock(mutex);
        isStopping = false;
        isWoken = false;
    }
    thread = Thread(name, [this] { Run(); });
    isRunning = true;
}

void WorkerThread::Stop()
{
    const std::lock_guard control(controlMutex);
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
    }
    condition.notify_all();
    thread.Join();
    isRunning = false;
}

void WorkerThread::Wake()
{
    {
        const std::lock_guard lock(mutex);
        isWoken = true;
    }
    condition.notify_all();
}

bool WorkerThread::IsRunning() const noexcept
{
    return isRunning;
}

void WorkerThread::Run()
{
    std::unique_lock lock(mutex);
    while (!isStopping)
    {
        lock.unlock();
        function();
        lock.lock();
        condition.wait_until(lock, DeadlineAfter(idleTime), [this] { return isStopping || isWoken; });
        isWoken = false;
    }
}

} // namespace Vela::System::Commons::Threading
