#pragma once

#include <sys/types.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Vela::Testing
{

/// Name and state of each thread, such as "(main) S".
inline std::vector<std::string> ReadThreadStates(pid_t process)
{
    std::vector<std::string> states;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task"))
    {
        std::string status;
        std::getline(std::ifstream(task.path() / "stat"), status);
        // The state stands behind the name, which is in parentheses.
        const std::size_t begin = std::min(status.find('('), status.size());
        const std::size_t end = std::min(status.rfind(')'), status.size());
        states.push_back(status.substr(begin, end - begin + 3));
    }
    return states;
}

/// Returns when a thread of that name (the kernel keeps 15 characters of it) waits for something. For threads that work
/// in turns, of which nothing else tells that the current one is over.
inline void AwaitRest(pid_t process, const std::string& threadName)
{
    const std::string wanted = "(" + threadName + ") S";
    for (auto states = ReadThreadStates(process); std::find(states.begin(), states.end(), wanted) == states.end();
         states = ReadThreadStates(process))
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// How often a thread of that name has gone to sleep.
inline long CountSleeps(pid_t process, const std::string& threadName)
{
    const std::string title = "voluntary_ctxt_switches:";
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task"))
    {
        std::ifstream status(task.path() / "status");
        bool isWanted = false;
        for (std::string line; std::getline(status, line);)
        {
            isWanted = isWanted || line == "Name:\t" + threadName;
            if (isWanted && line.starts_with(title))
            {
                return std::stol(line.substr(title.size()));
            }
        }
    }
    throw std::runtime_error("There is no thread " + threadName);
}

/// Stops a process and returns when none of its threads runs any more: the signal alone lets them go on until one of
/// them takes it.
inline void StopAllThreads(pid_t process)
{
    kill(process, SIGSTOP);
    const auto isRunning = [](const std::string& state)
    {
        return !state.ends_with(" T");
    };
    for (auto states = ReadThreadStates(process); std::any_of(states.begin(), states.end(), isRunning);
         states = ReadThreadStates(process))
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace Vela::Testing
