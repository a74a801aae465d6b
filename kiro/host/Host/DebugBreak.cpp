#include <Host/DebugBreak.hpp>
#include <Vela/String.hpp>

#include <poll.h>
#include <unistd.h>

#include <fstream>

namespace Vela::System::Kiro::Internal
{
namespace
{

constexpr int pollingTime = 100; // milliseconds; neither a debugger nor a request to end has a descriptor to wait for

bool IsDebuggerAttached()
{
    std::ifstream status("/proc/self/status");
    String name;
    String value;
    while (status >> name)
    {
        if (name == "TracerPid:")
        {
            status >> value;
            return value != "0";
        }
        std::getline(status, value);
    }
    return false;
}

} // namespace

void WaitForKeyOrDebugger(const std::function<bool()>& isEnding)
{
    bool hasInput = true;
    while (!isEnding())
    {
        pollfd input{hasInput ? STDIN_FILENO : -1, POLLIN, 0};
        if (poll(&input, 1, pollingTime) > 0)
        {
            char key = 0;
            if (read(STDIN_FILENO, &key, 1) == 1)
            {
                return;
            }
            hasInput = false;
        }
        if (!hasInput && IsDebuggerAttached())
        {
            return;
        }
    }
}

} // namespace Vela::System::Kiro::Internal
