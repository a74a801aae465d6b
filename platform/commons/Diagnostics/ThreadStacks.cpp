#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Diagnostics/ThreadStacks.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/TypeName.hpp>

#include <Diagnostics/StackWalk.hpp>
#include <cxxabi.h>
#include <dirent.h>
#include <dlfcn.h>
#include <fmt/format.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds timeForOne{500};
constexpr std::chrono::seconds timeForAll{3};

/// Where the look at a thread has come to; the number of the look stands above these bits.
enum Progress : unsigned
{
    Idle = 0,
    Requested = 1,
    Running = 2,
    Done = 3,
};
constexpr unsigned progressBits = 2;

/// The one look that is taken at a time. A thread that comes too late finds that it is not meant any more.
struct Look
{
    std::atomic<unsigned> state{Idle};
    sem_t done{};
    StackFrames frames;
    std::array<char, 64> step{};
    std::array<char, 32> kind{};
    std::array<char, 256> subject{};
};

Look look;
/// Held while looks are taken.
std::mutex mutex;
unsigned lastNumber = 0;

unsigned MakeState(unsigned number, Progress progress) noexcept
{
    return number << progressBits | progress;
}

int GetSignal() noexcept
{
    return SIGRTMIN + 5;
}

template <std::size_t Size>
void Copy(const char* text, std::array<char, Size>& target) noexcept
{
    const std::size_t length = ::strnlen(text, Size - 1);
    std::memcpy(target.data(), text, length);
    target[length] = '\0';
}

void TakeLook(int /*signal*/, siginfo_t* info, void* context)
{
    const int savedError = errno;
    const auto number = static_cast<unsigned>(info->si_value.sival_int);
    unsigned expected = MakeState(number, Requested);
    if (info->si_code == SI_QUEUE && look.state.compare_exchange_strong(expected, MakeState(number, Running)))
    {
        look.subject[0] = '\0';
        if (const Breadcrumb* breadcrumb = Breadcrumb::GetCurrent())
        {
            Copy(breadcrumb->GetStep(), look.step);
            Copy(breadcrumb->GetKind(), look.kind);
            Copy(breadcrumb->GetSubject(), look.subject);
        }
        WalkStack(context, look.frames);
        look.state.store(MakeState(number, Done));
        ::sem_post(&look.done);
    }
    errno = savedError;
}

/// Stays to the end of the process: a thread may answer late.
void Install()
{
    static const bool isInstalled = []
    {
        struct sigaction present
        {
        };
        ::sigaction(GetSignal(), nullptr, &present);
        if (present.sa_handler != SIG_DFL)
        {
            return false;
        }
        ::sem_init(&look.done, 0, 0);
        struct sigaction action
        {
        };
        action.sa_sigaction = TakeLook;
        action.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK;
        return ::sigaction(GetSignal(), &action, nullptr) == 0;
    }();
    if (!isInstalled)
    {
        throw InvalidOperationException("Signal {0} is used by somebody else: the stacks of threads cannot be seen.",
                                        GetSignal());
    }
}

bool AwaitDone(Clock::duration limit) noexcept
{
    const auto end = std::chrono::nanoseconds((Clock::now() + limit).time_since_epoch()).count();
    constexpr std::int64_t nanosecondsInSecond = 1'000'000'000;
    const timespec deadline{static_cast<time_t>(end / nanosecondsInSecond),
                            static_cast<decltype(timespec::tv_nsec)>(end % nanosecondsInSecond)};
    return RetryInterrupted([&] { return ::sem_clockwait(&look.done, CLOCK_MONOTONIC, &deadline); }) == 0;
}

/// False when the thread does not answer in time, or is gone.
bool LookAt(pid_t thread, Clock::duration limit)
{
    // What answered an earlier look too late.
    while (::sem_trywait(&look.done) == 0)
    {
    }
    const unsigned number = ++lastNumber & (~0U >> progressBits);
    look.state.store(MakeState(number, Requested));
    siginfo_t info{};
    info.si_code = SI_QUEUE;
    info.si_pid = ::getpid();
    info.si_uid = ::getuid();
    info.si_value.sival_int = static_cast<int>(number);
    const bool isSent = ::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), thread, GetSignal(), &info) == 0;
    bool isDone = isSent && AwaitDone(limit);
    if (!isDone)
    {
        unsigned expected = MakeState(number, Requested);
        // It may have begun in the last moment; then it is nearly through.
        isDone = !look.state.compare_exchange_strong(expected, MakeState(number, Idle)) && AwaitDone(timeForOne);
    }
    return isDone && look.state.load() == MakeState(number, Done);
}

String ReadName(pid_t thread)
{
    String name;
    std::getline(std::ifstream(fmt::format("/proc/self/task/{}/comm", thread)), name);
    return name;
}

std::vector<pid_t> ListThreads()
{
    std::vector<pid_t> threads;
    const std::unique_ptr<DIR, int (*)(DIR*)> tasks(::opendir("/proc/self/task"), ::closedir);
    while (const dirent* entry = tasks == nullptr ? nullptr : ::readdir(tasks.get()))
    {
        const auto thread = static_cast<pid_t>(std::strtol(static_cast<const char*>(entry->d_name), nullptr, 10));
        if (thread > 0 && thread != static_cast<pid_t>(::syscall(SYS_gettid)) &&
            threads.size() < ThreadStacks::mostThreads)
        {
            threads.push_back(thread);
        }
    }
    return threads;
}

String DescribeFrame(std::uintptr_t address, bool isInterrupted)
{
    Dl_info found{};
    // Where a call returns to may be the first instruction of the next function.
    // NOLINTNEXTLINE(performance-no-int-to-ptr): what a stack holds are numbers.
    const auto* inside = reinterpret_cast<const void*>(address - (isInterrupted ? 0 : 1));
    if (::dladdr(inside, &found) == 0 || found.dli_fname == nullptr)
    {
        return fmt::format("{:#x}", address);
    }
    const auto offset = address - reinterpret_cast<std::uintptr_t>(found.dli_fbase);
    String text = fmt::format("{:#x} {}+{:#x}", address, found.dli_fname, offset);
    if (found.dli_sname != nullptr)
    {
        const std::unique_ptr<char, void (*)(void*)> plain(
            abi::__cxa_demangle(found.dli_sname, nullptr, nullptr, nullptr), std::free);
        text += fmt::format(" ({})", plain == nullptr ? found.dli_sname : plain.get());
    }
    return text;
}

} // namespace

std::vector<ThreadStack> ThreadStacks::Collect()
{
    const std::lock_guard lock(mutex);
    Install();
    if ((look.state.load() & ((1U << progressBits) - 1)) == Running)
    {
        throw InvalidOperationException("A thread has not come back from an earlier look at its stack.");
    }
    const auto end = Clock::now() + timeForAll;
    std::vector<ThreadStack> stacks;
    for (const pid_t thread : ListThreads())
    {
        const auto limit = std::min<Clock::duration>(timeForOne, end - Clock::now());
        const bool isSeen = limit > Clock::duration::zero() && LookAt(thread, limit);
        if (!isSeen && ::access(fmt::format("/proc/self/task/{}", thread).c_str(), F_OK) != 0)
        {
            // It has ended meanwhile.
            continue;
        }
        ThreadStack& stack = stacks.emplace_back();
        stack.id = thread;
        stack.name = ReadName(thread);
        if (!isSeen)
        {
            continue;
        }
        if (look.subject[0] != '\0')
        {
            stack.activity = fmt::format("{} of {} '{}'", look.step.data(), look.kind.data(), look.subject.data());
        }
        for (std::size_t index = 0; index < look.frames.count; ++index)
        {
            stack.frames.push_back(DescribeFrame(look.frames.addresses[index], index == 0));
        }
    }
    return stacks;
}

std::size_t ThreadStacks::Log()
{
    auto& log = Logger::Get(typeid(ThreadStacks));
    const auto stacks = Collect();
    for (const ThreadStack& stack : stacks)
    {
        String text = fmt::format("Thread '{}' ({})", stack.name, stack.id);
        text += stack.activity.empty() ? "" : ", " + stack.activity;
        text += stack.frames.empty() ? " does not answer." : ":";
        for (const String& frame : stack.frames)
        {
            text += "\n" + frame;
        }
        log.Warning("{}", text);
    }
    return stacks.size();
}

} // namespace Vela::System::Commons::Diagnostics
