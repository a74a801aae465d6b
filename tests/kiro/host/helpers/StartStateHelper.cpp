// Prints how it was started, changes all of it, and starts itself again; the second time it prints and ends.
// Argument: a file that does not exist yet, by which it knows the second time.

#include <Vela/System/Kiro/Internal/StartState.hpp>

#include <sched.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace
{

void PrintState(int argc, char** argv)
{
    std::cout << "state " << getpid() << " in " << std::filesystem::current_path().string() << " with";
    for (int index = 1; index < argc; ++index)
    {
        std::cout << " '" << argv[index] << "'";
    }
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    for (const int signal : {SIGTERM, SIGINT, SIGUSR1})
    {
        std::cout << " " << sigismember(&mask, signal);
    }
    for (const int signal : {SIGPIPE, SIGINT, SIGCHLD})
    {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        std::cout << (action.sa_handler == SIG_IGN ? " ignored" : " default");
    }
    cpu_set_t processors;
    sched_getaffinity(0, sizeof processors, &processors);
    const char* added = std::getenv("ADDED_LATER");
    const char* kept = std::getenv("THERE_AT_THE_START");
    std::cout << " on " << CPU_COUNT(&processors) << " processors, " << (added == nullptr ? "none" : added) << ", "
              << (kept == nullptr ? "none" : kept) << std::endl;
}

void ChangeEverything()
{
    setenv("ADDED_LATER", "1", 1);
    unsetenv("THERE_AT_THE_START");
    std::filesystem::current_path("/");
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGINT, SIG_DFL);
    signal(SIGCHLD, SIG_IGN);
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(static_cast<unsigned>(sched_getcpu()), &processors);
    sched_setaffinity(0, sizeof processors, &processors);
}

} // namespace

int main(int argc, char** argv)
{
    const Vela::System::Kiro::Internal::StartState startState(argc, argv);
    PrintState(argc, argv);
    if (std::filesystem::exists(argv[1]))
    {
        return 0;
    }
    std::ofstream(argv[1]) << "once";
    ChangeEverything();
    startState.StartAgain();
}
