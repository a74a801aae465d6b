#include <Host/ShutdownRequest.hpp>
#include <Vela/Exceptions.hpp>

namespace Vela::System::Kiro::Internal
{

void ShutdownRequest::CreateEvent()
{
    const std::lock_guard lock(mutex);
    event = std::make_shared<Commons::Threading::AutoResetEvent>(isEnding);
}

void ShutdownRequest::ReleaseEvent()
{
    const std::lock_guard lock(mutex);
    event.reset();
}

void ShutdownRequest::Wait()
{
    std::shared_ptr<Commons::Threading::AutoResetEvent> waited;
    {
        const std::lock_guard lock(mutex);
        waited = event;
    }
    if (!waited)
    {
        throw InvalidOperationException("There is no shutdown event to wait for.");
    }
    waited->WaitOne();
}

void ShutdownRequest::RequestRestart()
{
    isSystemShutdownLast.store(false);
    restartRequested.store(true);
    shutdownRequested.store(true);
    Signal();
}

void ShutdownRequest::RequestSystemShutdown()
{
    isSystemShutdownLast.store(true);
    restartRequested.store(false);
    Signal();
}

void ShutdownRequest::RequestProcessShutdown()
{
    restartRequested.store(false);
    shutdownRequested.store(true);
    Signal();
}

void ShutdownRequest::RequestConsoleShutdown() noexcept
{
    shutdownRequested.store(true);
}

bool ShutdownRequest::IsRestartRequested() const noexcept
{
    return restartRequested.load();
}

bool ShutdownRequest::IsSystemShutdownLast() const noexcept
{
    return isSystemShutdownLast.load();
}

bool ShutdownRequest::IsShutdownRequested() const noexcept
{
    return shutdownRequested.load();
}

bool ShutdownRequest::IsEnding() const
{
    const std::lock_guard lock(mutex);
    return isEnding;
}

void ShutdownRequest::Signal()
{
    const std::lock_guard lock(mutex);
    isEnding = true;
    if (event)
    {
        event->Set();
    }
}

} // namespace Vela::System::Kiro::Internal
