#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace Vela::Testing
{

/// Returns when a thread of that name (the kernel keeps 15 characters of it) waits for something. For threads that work
/// in turns, of which nothing else tells that the current one is over.
inline void AwaitRest(pid_t process, const std::string& threadName)
{
    for (;; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
    {
        for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task"))
        {
            std::string status;
            std::getline(std::ifstream(task.path() / "stat"), status);
            // The state stands behind the name, which is in parentheses.
            if (status.find("(" + threadName + ") S") != std::string::npos)
            {
                return;
            }
        }
    }
}

} // namespace Vela::Testing
