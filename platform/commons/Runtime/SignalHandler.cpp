#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Runtime/SignalHandler.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <mutex>
#include <utility>

namespace Vela::System::Commons::Runtime
{

namespace
{

sigset_t GetHandledSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGTERM);
    ::sigaddset(&signals, SIGINT);
    return signals;
}

} // namespace

struct SignalHandler::Data : private Diagnostics::Loggable<SignalHandler>
{
    void Start();
    void Stop();
    void SetHandler(Handler newHandler);

private:
    void Read();
    void Take(int signal);
    void CallHandlerIfDue();
    [[noreturn]] static void EndProcess(int signal);

    UniqueFd signals;
    UniqueFd stopRequest;
    std::mutex mutex;
    Handler handler;
    int signal = 0;
    bool isHandled = false;
    /// Calls the handler while the reader waits for the second signal.
    Threading::Thread caller;
    Threading::Thread reader;
};

void SignalHandler::Data::Start()
{
    if (reader.IsJoinable())
    {
        return;
    }
    const sigset_t handled = GetHandledSignals();
    signals = UniqueFd(::signalfd(-1, &handled, SFD_CLOEXEC | SFD_NONBLOCK));
    stopRequest = UniqueFd(::eventfd(0, EFD_CLOEXEC));
    if (!signals.IsValid() || !stopRequest.IsValid())
    {
        ThrowSystemError("Could not set up the signal handler");
    }
    reader = Threading::Thread("SignalReader", [this] { Read(); });
}

void SignalHandler::Data::Stop()
{
    if (reader.IsJoinable())
    {
        static_cast<void>(::eventfd_write(stopRequest.Get(), 1));
        reader.Join();
    }
    caller.Join();
}

void SignalHandler::Data::SetHandler(Handler newHandler)
{
    const std::lock_guard lock(mutex);
    handler = std::move(newHandler);
    CallHandlerIfDue();
}

void SignalHandler::Data::Read()
{
    for (;;)
    {
        pollfd descriptors[] = {{stopRequest.Get(), POLLIN, 0}, {signals.Get(), POLLIN, 0}};
        static_cast<void>(RetryInterrupted([&] { return ::poll(descriptors, 2, -1); }));
        if (descriptors[0].revents != 0)
        {
            return;
        }
        signalfd_siginfo info{};
        if (::read(signals.Get(), &info, sizeof(info)) == static_cast<ssize_t>(sizeof(info)))
        {
            Take(static_cast<int>(info.ssi_signo));
        }
    }
}

void SignalHandler::Data::Take(int newSignal)
{
    const std::lock_guard lock(mutex);
    if (signal != 0)
    {
        EndProcess(newSignal);
    }
    signal = newSignal;
    CallHandlerIfDue();
}

void SignalHandler::Data::CallHandlerIfDue()
{
    if (signal == 0 || handler == nullptr || isHandled)
    {
        return;
    }
    isHandled = true;
    caller = Threading::Thread("SignalHandler",
                               [callee = handler, number = signal]
                               {
                                   try
                                   {
                                       callee(number);
                                   }
                                   catch (...)
                                   {
                                       log.Error("Handler of signal {0} failed: {1}", number,
                                                 CaughtException::Current().GetText());
                                   }
                               });
}

void SignalHandler::Data::EndProcess(int signal)
{
    log.Fatal("Second signal ({0}): the process ends at once.", signal);
    if (auto* manager = Diagnostics::LogManager::TryGetInstance())
    {
        manager->Flush();
    }
    Diagnostics::LogManager::WriteKeptErrors();
    constexpr int signalExitCode = 128;
    ::_exit(signalExitCode + signal);
}

void SignalHandler::BlockSignals()
{
    // What the starting process ignored would be thrown away instead of waiting to be read, and an ignored SIGCHLD
    // would reap our children before we have seen how they ended.
    for (const int signal : {SIGTERM, SIGINT, SIGCHLD})
    {
        ::signal(signal, SIG_DFL);
    }
    ::signal(SIGPIPE, SIG_IGN);
    const sigset_t handled = GetHandledSignals();
    ::pthread_sigmask(SIG_BLOCK, &handled, nullptr);
}

SignalHandler::SignalHandler()
    : data(std::make_unique<Data>())
{
}

SignalHandler::~SignalHandler()
{
    data->Stop();
}

void SignalHandler::Setup()
{
    data->Start();
}

void SignalHandler::SetHandler(Handler handler)
{
    data->SetHandler(std::move(handler));
}

} // namespace Vela::System::Commons::Runtime
