#include <dirent.h>
#include <execinfo.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

// A test that hangs says where before it is ended: some time before the time limit of its runner the stacks of all its
// threads go to the standard error output. What hangs once in many thousand runs is not seen twice.

namespace
{

/// Well before the runner's limit of 120 s, and later than any test takes. A campaign that is meant to take longer sets
/// VELA_TEST_PATIENCE.
time_t GetPatienceSeconds()
{
    const char* seconds = std::getenv("VELA_TEST_PATIENCE");
    return seconds == nullptr ? 100 : static_cast<time_t>(std::strtol(seconds, nullptr, 10));
}

int GetStackSignal()
{
    return SIGRTMIN + 12;
}

void Say(const char* text)
{
    static_cast<void>(!write(STDERR_FILENO, text, std::strlen(text)));
}

void WriteOwnStack(int /*signal*/)
{
    char title[64];
    static_cast<void>(std::snprintf(title, sizeof(title), "Thread %ld:\n", syscall(SYS_gettid)));
    Say(title);
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
}

void WriteAllStacks(int /*signal*/)
{
    Say("This test hangs. The stacks of its threads:\n");
    DIR* tasks = opendir("/proc/self/task");
    for (const dirent* entry = tasks == nullptr ? nullptr : readdir(tasks); entry != nullptr; entry = readdir(tasks))
    {
        const long thread = std::strtol(entry->d_name, nullptr, 10);
        if (thread > 0)
        {
            static_cast<void>(syscall(SYS_tgkill, getpid(), thread, GetStackSignal()));
            // One stack after the other; nothing waits for this process any more.
            const timespec pause{0, 200'000'000};
            static_cast<void>(clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr));
        }
    }
    abort();
}

void Handle(int signal, void (*handler)(int))
{
    struct sigaction action
    {
    };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    static_cast<void>(sigaction(signal, &action, nullptr));
}

const struct HangReport
{
    HangReport()
    {
        // The first call loads what later calls need: not to be done in a signal handler.
        void* frame = nullptr;
        static_cast<void>(backtrace(&frame, 1));
        Handle(GetStackSignal(), &WriteOwnStack);
        Handle(SIGRTMIN + 11, &WriteAllStacks);
        sigevent event{};
        event.sigev_notify = SIGEV_SIGNAL;
        event.sigev_signo = SIGRTMIN + 11;
        timer_t timer{};
        const itimerspec limit{{0, 0}, {GetPatienceSeconds(), 0}};
        if (timer_create(CLOCK_MONOTONIC, &event, &timer) == 0)
        {
            static_cast<void>(timer_settime(timer, 0, &limit, nullptr));
        }
    }
} hangReport;

} // namespace
