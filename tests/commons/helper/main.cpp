// Does in a process of its own what the tests cannot do in theirs; the first argument says what.

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Runtime/SignalHandler.hpp>
#include <Vela/System/Commons/Threading/AutoResetEvent.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <latch>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace Vela;
using namespace Vela::System::Commons;
using Diagnostics::Logger;
using Diagnostics::LogLevel;
using Diagnostics::LogManager;
using Runtime::SignalHandler;

namespace
{

using Arguments = std::vector<std::string>;

/// One line by one write: lines of two threads must not mix.
void Say(const std::string& line)
{
    std::cout << line + "\n" << std::flush;
}

std::string Link(const std::string& path)
{
    char buffer[4096] = {};
    return ::readlink(path.c_str(), buffer, sizeof(buffer) - 1) < 0 ? "" : buffer;
}

/// Writes into a file what this process got from the one that started it.
int Report(const Arguments& arguments)
{
    std::ostringstream report;
    sigset_t blocked;
    ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (int signal = 1; signal <= SIGRTMAX; ++signal)
    {
        struct sigaction action
        {
        };
        if (::sigismember(&blocked, signal) == 1 ||
            (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN))
        {
            report << "signal " << signal << '\n';
        }
    }
    report << "group " << (::getpgrp() == ::getpid()) << "\nsession " << (::getsid(0) == ::getpid()) << '\n';
    report << "directory " << Link("/proc/self/cwd") << "\nstdin " << Link("/proc/self/fd/0") << '\n';
    report << "stdout " << Link("/proc/self/fd/1") << '\n';
    for (int descriptor = 3; descriptor < 256; ++descriptor)
    {
        if (::fcntl(descriptor, F_GETFD) >= 0)
        {
            report << "descriptor " << descriptor << '\n';
        }
    }
    const char* variable = std::getenv("VELA_TEST_VARIABLE");
    report << "variable " << (variable == nullptr ? "" : variable) << '\n';
    cpu_set_t processors;
    CPU_ZERO(&processors);
    ::sched_getaffinity(0, sizeof(processors), &processors);
    report << "processors " << CPU_COUNT(&processors) << "\nparent " << ::getppid() << '\n';
    for (const auto& argument : arguments)
    {
        report << "argument <" << argument << ">\n";
    }
    std::ofstream(arguments.at(0) + ".new") << report.str();
    return std::rename((arguments[0] + ".new").c_str(), arguments[0].c_str());
}

/// Starts a process of its own that holds the FIFO open, then ends as told: "exit", "crash", or not at all.
int Family(const Arguments& arguments)
{
    const int fifo = ::open(arguments.at(0).c_str(), O_WRONLY | O_CLOEXEC);
    if (::fork() == 0)
    {
        static_cast<void>(::write(fifo, "born\n", 5) == 5);
        for (;;)
        {
            ::pause();
        }
    }
    const std::string& end = arguments.at(1);
    if (end == "exit")
    {
        return 3;
    }
    if (end == "crash")
    {
        ::raise(SIGKILL);
    }
    for (;;)
    {
        ::pause();
    }
}

/// Waits for signals, with a handler that does what a line of standard input says: "return", "hang" or "throw"; with
/// "none" it stops without having seen a signal.
int Signals(const Arguments&)
{
    SignalHandler::BlockSignals();
    LogManager::CreateInstance(LogLevel::Info);
    Threading::AutoResetEvent done(false);
    {
        SignalHandler handler;
        handler.Setup();
        Say("ready");
        std::string mode;
        std::getline(std::cin, mode);
        handler.SetHandler(
            [&, mode](int signal)
            {
                Say("handled " + std::to_string(signal));
                while (mode == "hang")
                {
                    ::pause();
                }
                done.Set();
                if (mode == "throw")
                {
                    throw InvalidOperationException("out of order");
                }
            });
        Say("installed");
        if (mode != "none")
        {
            done.WaitOne();
        }
    }
    Say("stopped");
    LogManager::DisposeInstance();
    return 0;
}

/// Logs without ever having a log manager; what is kept is written when the objects of this run are gone.
int LogWithoutManager(const Arguments&)
{
    AppDomain::CreateInstance().SetApplicationName("Helper");
    Logger& log = Logger::Get("Early.Bird");
    for (int number = 0; number < 3000; ++number)
    {
        log.Info("chatter {0}", number);
    }
    LogLevel level{};
    log.Debug("a level that {0}", TryGetEnumValue("Info", level) ? "exists" : "does not exist");
    log.Error("lost {0}", "key");
    log.Fatal("lost house");
    return 0;
}

/// Logs before, with, between, and after log managers that write to standard output.
int LogThroughManagers(const Arguments&)
{
    AppDomain::CreateInstance().SetApplicationName("Helper");
    Logger& log = Logger::Get("Early.Bird");
    log.Info("before");
    log.Debug("before in detail");
    LogManager::CreateInstance(LogLevel::Info);
    log.Warning("with");
    LogManager::DisposeInstance();
    log.Error("between, and wrong");
    log.Debug("between");
    LogManager::CreateInstance(LogLevel::Debug);
    LogManager::DisposeInstance();
    return 0;
}

/// Logs long lines from many threads.
int LogLongLines(const Arguments& arguments)
{
    AppDomain::CreateInstance().SetApplicationName("Helper");
    LogManager::CreateInstance(LogLevel::Info);
    std::vector<std::thread> threads;
    for (char letter = 'a'; letter < 'e'; ++letter)
    {
        threads.emplace_back(
            [&, letter]
            {
                for (int line = 0; line < 50; ++line)
                {
                    Logger::Get("Long").Info("<{0}>", std::string(std::stoul(arguments.at(0)), letter));
                }
            });
    }
    for (auto& thread : threads)
    {
        thread.join();
    }
    LogManager::DisposeInstance();
    return 0;
}

void FillPipe(int end)
{
    const std::vector<char> filler(1024, 'x');
    ::fcntl(end, F_SETFL, O_NONBLOCK);
    while (::write(end, filler.data(), filler.size()) > 0)
    {
    }
    ::fcntl(end, F_SETFL, 0);
}

/// Closes the reading end of its own standard output, logs, and says on standard error that it lives.
int LogIntoClosedPipe(const Arguments&)
{
    SignalHandler::BlockSignals();
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0 || ::dup2(ends[1], STDOUT_FILENO) < 0)
    {
        return 1;
    }
    LogManager::CreateInstance(LogLevel::Info);
    // More than the pipe holds.
    Logger::Get("Pipe").Info("{0}", std::string(100'000, 'x'));
    FillPipe(ends[1]);
    for (int number = 0; number < 5; ++number)
    {
        Logger::Get("Pipe").Info("nobody reads this {0}", number);
    }
    ::close(ends[0]);
    Logger::Get("Pipe").Info("nobody can read this");
    LogManager::DisposeInstance();
    std::cerr << "alive" << std::endl;
    return 0;
}

/// Uses up the stack of its thread.
int Recurse(volatile char* outer)
{
    volatile char room[4096];
    room[0] = outer[0];
    return outer == nullptr ? 0 : Recurse(room) + room[0];
}

/// Threads that crash at the same time.
constexpr int crowd = 8;

void Crash(const std::string& way)
{
    char seed = 0;
    if (way == "crowd")
    {
        static std::latch together(crowd);
        together.arrive_and_wait();
    }
    if (way == "unheard")
    {
        int ends[2] = {-1, -1};
        static_cast<void>(::pipe(ends) == 0 && ::dup2(ends[1], STDERR_FILENO) >= 0 && ::close(ends[0]) == 0);
    }
    if (way == "stuck")
    {
        int ends[2] = {-1, -1};
        static_cast<void>(::pipe(ends) == 0 && ::dup2(ends[1], STDERR_FILENO) >= 0);
        FillPipe(STDERR_FILENO);
    }
    if (way == "null" || way == "crowd" || way == "unheard" || way == "stuck")
    {
        *static_cast<volatile int*>(nullptr) = 1;
    }
    else if (way == "jump")
    {
        void (*volatile nowhere)() = nullptr;
        nowhere();
    }
    else if (way == "overflow")
    {
        Recurse(&seed);
    }
    else if (way == "bus")
    {
        // A page of a file that has none.
        const int file = ::memfd_create("empty", MFD_CLOEXEC);
        void* page = ::mmap(nullptr, 1, PROT_READ, MAP_SHARED, file, 0);
        seed = *static_cast<volatile char*>(page);
    }
    else if (way == "raise")
    {
        ::raise(SIGFPE);
    }
    std::abort();
}

/// Crashes in the given way on a thread of its own.
int CrashOnThread(const Arguments& arguments)
{
    const std::string& way = arguments[1];
    if (way == "foreign")
    {
        ::signal(SIGABRT, [](int) { ::_exit(7); });
    }
    Diagnostics::CrashHandler::Install("Helper");
    Diagnostics::CrashHandler::SetRuntimeDirectory(arguments[0]);
    if (way == "withdrawn")
    {
        Diagnostics::CrashHandler::Withdraw();
    }
    LogManager::CreateInstance(LogLevel::Info);
    Logger::Get("Helper").Info("is about to crash");
    const auto run = [&way]
    {
        const String nobody = "nobody";
        const Diagnostics::Breadcrumb outer("Outside", "component", nobody);
        const Diagnostics::Breadcrumb breadcrumb("Crash", "component", way);
        {
            const Diagnostics::Breadcrumb done("Before", "component", nobody);
        }
        Crash(way);
    };
    std::vector<Threading::Thread> threads;
    const std::size_t count = way == "crowd" ? crowd : 1;
    threads.reserve(count);
    while (threads.size() < count)
    {
        threads.emplace_back("Crasher", run);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, std::function<int(const Arguments&)>> modes{
        {"report", Report},
        {"family", Family},
        {"signals", Signals},
        {"log-without-manager", LogWithoutManager},
        {"log-through-managers", LogThroughManagers},
        {"log-long-lines", LogLongLines},
        {"log-into-closed-pipe", LogIntoClosedPipe},
        {"crash", CrashOnThread},
    };
    return modes.at(argv[1])(Arguments(argv + 2, argv + argc));
}
