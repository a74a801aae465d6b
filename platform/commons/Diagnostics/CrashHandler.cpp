#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <Diagnostics/LogRegistry.hpp>
#include <Diagnostics/PlainWriter.hpp>
#include <Diagnostics/StackWalk.hpp>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

struct HandledSignal
{
    int number;
    const char* name;
};

constexpr std::array handledSignals{
    HandledSignal{SIGSEGV, "SIGSEGV"}, HandledSignal{SIGBUS, "SIGBUS"},   HandledSignal{SIGFPE, "SIGFPE"},
    HandledSignal{SIGILL, "SIGILL"},   HandledSignal{SIGABRT, "SIGABRT"},
};

/// What the handler finds, ready before anything goes wrong.
struct CrashState
{
    std::atomic<bool> isInstalled{false};
    std::array<char, 128> process{};
    std::atomic<int> runtimeDirectory{-1};
    /// The thread whose crash is being reported.
    std::atomic<pid_t> thread{0};
    std::atomic<int> signal{0};
};

CrashState state;

pid_t GetThreadId() noexcept
{
    return static_cast<pid_t>(::syscall(SYS_gettid));
}

void RestoreDefault(int signal) noexcept
{
    struct sigaction action
    {
    };
    action.sa_handler = SIG_DFL;
    ::sigaction(signal, &action, nullptr);
}

/// Ends the process by the signal that it has crashed of.
[[noreturn]] void DieAtOnce() noexcept
{
    const int signal = state.signal;
    RestoreDefault(signal);
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    ::syscall(SYS_tgkill, ::getpid(), GetThreadId(), signal);
    for (;;)
    {
        ::pause();
    }
}

void LimitTime() noexcept
{
    struct sigaction action
    {
    };
    action.sa_handler = [](int)
    {
        DieAtOnce();
    };
    ::sigaction(SIGALRM, &action, nullptr);
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    constexpr unsigned limit = 3;
    ::alarm(limit);
}

const char* GetName(int signal) noexcept
{
    for (const HandledSignal& handled : handledSignals)
    {
        if (handled.number == signal)
        {
            return handled.name;
        }
    }
    return "";
}

std::int64_t GetTime() noexcept
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
}

int OpenRecord(PlainWriter& writer) noexcept
{
    const int runtimeDirectory = state.runtimeDirectory;
    if (runtimeDirectory < 0)
    {
        return -1;
    }
    ::mkdirat(runtimeDirectory, CrashRecords::directoryName, S_IRWXU);
    writer.Text(CrashRecords::directoryName).Text("/").CompactTime();
    writer.Text("-").Number(static_cast<std::uint64_t>(::getpid())).Text(CrashRecords::fileNameEnd);
    const int file = ::openat(runtimeDirectory, writer.GetLine(),
                              O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    writer.Clear();
    return file;
}

void WriteOrigin(PlainWriter& writer, int signal, const siginfo_t& info) noexcept
{
    writer.Text("signal: ").Text(GetName(signal)).Text(" (").Number(static_cast<unsigned>(signal)).Text(")");
    writer.EndLine();
    const bool isFault = info.si_code > 0;
    if (isFault)
    {
        writer.Text("code: ").Number(static_cast<unsigned>(info.si_code)).EndLine();
        writer.Text("address: ").Address(reinterpret_cast<std::uintptr_t>(info.si_addr)).EndLine();
    }
    else if (info.si_pid != ::getpid())
    {
        writer.Text("sender: ").Number(static_cast<std::uint64_t>(info.si_pid)).EndLine();
    }
    std::array<char, 16> threadName{};
    ::prctl(PR_GET_NAME, threadName.data());
    writer.Text("thread: ").Text(threadName.data(), threadName.size()).Text(" (");
    writer.Number(static_cast<std::uint64_t>(GetThreadId())).Text(")").EndLine();
    constexpr std::size_t longestName = 512;
    if (const Breadcrumb* breadcrumb = Breadcrumb::GetCurrent())
    {
        writer.Text(breadcrumb->GetKind()).Text(": ").Text(breadcrumb->GetSubject(), longestName).EndLine();
        writer.Text("step: ").Text(breadcrumb->GetStep()).EndLine();
    }
}

/// What is most certain comes first: whatever is broken may break the report as well.
void Report(int signal, const siginfo_t& info, void* context) noexcept
{
    PlainWriter writer;
    const int record = OpenRecord(writer);
    writer.AddTarget(record);
    writer.AddTarget(STDERR_FILENO);
    writer.Text("reason: crash").EndLine();
    writer.Text("time: ").Time(GetTime()).EndLine();
    writer.Text("process: ").Text(state.process.data(), state.process.size()).EndLine();
    writer.Text("pid: ").Number(static_cast<std::uint64_t>(::getpid())).EndLine();
    WriteOrigin(writer, signal, info);
    StackFrames frames;
    WalkStack(context, frames);
    writer.Text("stack:").EndLine();
    WriteStack(writer, frames);

    // The standard error output leads where the log does, or next to it.
    PlainWriter recordWriter;
    recordWriter.AddTarget(record);
    recordWriter.Text("log:").EndLine();
    LogRegistry::GetInstance().GetRecentMessages().Write(recordWriter, "  ");
}

void Handle(int signal, siginfo_t* info, void* context)
{
    pid_t reporting = 0;
    const pid_t thread = GetThreadId();
    if (!state.thread.compare_exchange_strong(reporting, thread))
    {
        if (reporting == thread)
        {
            DieAtOnce();
        }
        // The first takes the process with it.
        for (;;)
        {
            ::pause();
        }
    }
    state.signal = signal;
    LimitTime();
    // Nobody may be left to read the standard error output; the record must be written all the same.
    ::signal(SIGPIPE, SIG_IGN);
    Report(signal, *info, context);
    RestoreDefault(signal);
    // A fault comes again by itself, when this handler returns to the instruction at fault. What somebody has sent is
    // sent again, with all that was told about it.
    const bool isFault = info->si_code > 0;
    if (!isFault && ::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), thread, signal, info) != 0)
    {
        DieAtOnce();
    }
}

} // namespace

void CrashHandler::Install([[maybe_unused]] const String& processName)
{
#ifndef VELA_SANITIZED
    if (state.isInstalled.exchange(true))
    {
        return;
    }
    processName.copy(state.process.data(), state.process.size() - 1);
    static_cast<void>(LogRegistry::GetInstance());
    // The main thread's, to the end of the process.
    static const auto& stack = *new AlternateSignalStack;
    static_cast<void>(stack);
    struct sigaction action
    {
    };
    action.sa_sigaction = Handle;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (const HandledSignal& handled : handledSignals)
    {
        struct sigaction present
        {
        };
        ::sigaction(handled.number, nullptr, &present);
        const bool isFree = (present.sa_flags & SA_SIGINFO) == 0 && present.sa_handler == SIG_DFL;
        if (isFree)
        {
            ::sigaction(handled.number, &action, nullptr);
        }
    }
#endif
}

void CrashHandler::SetRuntimeDirectory(const String& path)
{
    const int directory = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
    {
        ThrowSystemError(fmt::format("Cannot open runtime directory '{}'", path));
    }
    if (const int former = state.runtimeDirectory.exchange(directory); former >= 0)
    {
        ::close(former);
    }
}

void CrashHandler::Withdraw() noexcept
{
    if (state.isInstalled)
    {
        for (const HandledSignal& handled : handledSignals)
        {
            struct sigaction present
            {
            };
            ::sigaction(handled.number, nullptr, &present);
            if ((present.sa_flags & SA_SIGINFO) != 0 && present.sa_sigaction == Handle)
            {
                RestoreDefault(handled.number);
            }
        }
    }
}

AlternateSignalStack::AlternateSignalStack() noexcept
{
    stack_t present{};
    if (!state.isInstalled || ::sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_DISABLE) == 0)
    {
        return;
    }
    constexpr std::size_t needed = std::size_t{32} * 1024;
    const long smallest = ::sysconf(_SC_MINSIGSTKSZ);
    size = needed + (smallest > 0 ? static_cast<std::size_t>(smallest) : 0);
    memory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED)
    {
        memory = nullptr;
        return;
    }
    stack_t own{};
    own.ss_sp = memory;
    own.ss_size = size;
    ::sigaltstack(&own, nullptr);
}

AlternateSignalStack::~AlternateSignalStack()
{
    if (memory != nullptr)
    {
        stack_t none{};
        none.ss_flags = SS_DISABLE;
        ::sigaltstack(&none, nullptr);
        ::munmap(memory, size);
    }
}

} // namespace Vela::System::Commons::Diagnostics
