#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <pthread.h>

#include <chrono>
#include <system_error>
#include <utility>

namespace Vela::System::Commons::Threading
{

Thread::Thread(const String& name, std::function<void()> function)
try : thread(
    [name, function = std::move(function)]
    {
        SetCurrentName(name);
        const Diagnostics::AlternateSignalStack signalStack;
        function();
    })
{
}
catch (const std::system_error& error)
{
    throw Exception("Could not start thread '{0}': {1}", name, error.what());
}

Thread& Thread::operator=(Thread&& other) noexcept
{
    if (this != &other)
    {
        Join();
        thread = std::move(other.thread);
    }
    return *this;
}

Thread::~Thread()
{
    Join();
}

void Thread::Join()
{
    if (thread.joinable())
    {
        thread.join();
    }
}

bool Thread::IsJoinable() const noexcept
{
    return thread.joinable();
}

void Thread::Sleep(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void Thread::SetCurrentName(const String& name) noexcept
{
    constexpr std::size_t maximumLength = 15;
    char buffer[maximumLength + 1] = {};
    name.copy(buffer, maximumLength);
    ::pthread_setname_np(::pthread_self(), buffer);
}

} // namespace Vela::System::Commons::Threading
