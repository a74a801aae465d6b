#include "Harness/ProcessFigures.hpp"

#include <Vela/Exceptions.hpp>

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace Vela::Benchmarks
{

namespace fs = std::filesystem;

namespace
{

fs::path GetDirectory(pid_t pid)
{
    return fs::path("/proc") / std::to_string(pid);
}

/// The number behind a name, as in "Pss:   1234 kB".
std::uint64_t ReadNumber(const fs::path& file, const std::string& name)
{
    std::ifstream stream(file);
    std::string word;
    while (stream >> word)
    {
        if (std::uint64_t number = 0; word == name && stream >> number)
        {
            return number;
        }
    }
    throw Exception("There is no '{0}' in '{1}'.", name, file.string());
}

std::vector<fs::path> GetTasks(pid_t pid)
{
    const fs::directory_iterator tasks(GetDirectory(pid) / "task");
    return {begin(tasks), end(tasks)};
}

} // namespace

std::size_t GetProportionalMemory(pid_t pid)
{
    return static_cast<std::size_t>(ReadNumber(GetDirectory(pid) / "smaps_rollup", "Pss:"));
}

std::size_t GetThreadCount(pid_t pid)
{
    return GetTasks(pid).size();
}

std::uint64_t GetWakeUps(pid_t pid)
{
    std::uint64_t count = 0;
    for (const fs::path& task : GetTasks(pid))
    {
        count += ReadNumber(task / "status", "voluntary_ctxt_switches:");
    }
    return count;
}

std::vector<pid_t> GetChildren(pid_t pid)
{
    std::vector<pid_t> children;
    for (const fs::path& task : GetTasks(pid))
    {
        std::ifstream stream(task / "children");
        for (pid_t child = 0; stream >> child;)
        {
            children.push_back(child);
        }
    }
    return children;
}

} // namespace Vela::Benchmarks
