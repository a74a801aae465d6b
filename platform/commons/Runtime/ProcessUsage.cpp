#include <Vela/String.hpp>
#include <Vela/System/Commons/Runtime/ProcessUsage.hpp>

#include <unistd.h>

#include <fstream>
#include <sstream>

namespace Vela::System::Commons::Runtime
{

namespace
{

String GetFile(pid_t process, const char* name)
{
    return fmt::format("/proc/{}/{}", process, name);
}

/// The file is made when it is read, and the kernel may refuse it.
std::uint64_t ReadProportionalBytes(pid_t process)
{
    std::ifstream file(GetFile(process, "smaps_rollup"));
    String word;
    while (file >> word)
    {
        if (std::uint64_t kibibytes = 0; word == "Pss:" && file >> kibibytes)
        {
            return kibibytes * 1024;
        }
    }
    return 0;
}

} // namespace

std::optional<ProcessUsage> ReadProcessUsage(pid_t process)
{
    std::ifstream file(GetFile(process, "stat"));
    String line;
    std::getline(file, line);
    // The name before it stands in parentheses and may hold anything, parentheses included.
    const auto nameEnd = line.rfind(')');
    if (nameEnd == String::npos)
    {
        return std::nullopt;
    }
    std::istringstream fields(line.substr(nameEnd + 1));
    ProcessUsage usage;
    String skipped;
    const auto skip = [&](int count)
    {
        for (; count > 0; --count)
        {
            fields >> skipped;
        }
    };
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    std::uint64_t residentPages = 0;
    fields >> usage.state;
    skip(10);
    fields >> userTicks >> systemTicks;
    skip(4);
    fields >> usage.threads;
    skip(3);
    fields >> residentPages;
    if (!fields)
    {
        return std::nullopt;
    }
    const auto tick = std::chrono::microseconds(std::chrono::seconds(1)) / ::sysconf(_SC_CLK_TCK);
    usage.userTime = tick * static_cast<std::int64_t>(userTicks);
    usage.systemTime = tick * static_cast<std::int64_t>(systemTicks);
    usage.residentBytes = residentPages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    usage.proportionalBytes = ReadProportionalBytes(process);
    return usage;
}

} // namespace Vela::System::Commons::Runtime
