#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <Runtime/SpawnPlan.hpp>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Vela::System::Commons::Runtime
{

void Process::StartDaemon(const String& workingDirectory, const String& fileName, const String& arguments)
{
    const SpawnPlan plan(SpawnPlan::Kind::Daemon, workingDirectory, fileName, arguments, {});
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
    {
        ThrowStartFailed(fileName, errno);
    }
    const UniqueFd readEnd(ends[0]);
    UniqueFd writeEnd(ends[1]);
    // A process in between, gone at once, makes the daemon an orphan, which is reaped by init and not by us.
    const pid_t between = ::fork();
    if (between < 0)
    {
        ThrowStartFailed(fileName, errno);
    }
    if (between == 0)
    {
        pid_t daemon = -1;
        const int errorNumber = plan.Spawn(daemon);
        const bool isReported = ::write(writeEnd.Get(), &errorNumber, sizeof(errorNumber)) == sizeof(errorNumber);
        ::_exit(isReported ? 0 : 1);
    }
    writeEnd.Reset();
    int errorNumber = 0;
    const auto count = RetryInterrupted([&] { return ::read(readEnd.Get(), &errorNumber, sizeof(errorNumber)); });
    RetryInterrupted([&] { return ::waitpid(between, nullptr, 0); });
    if (count != static_cast<ssize_t>(sizeof(errorNumber)))
    {
        throw Exception("Could not start process '{0}': the process in between died", fileName);
    }
    if (errorNumber != 0)
    {
        ThrowStartFailed(fileName, errorNumber);
    }
}

} // namespace Vela::System::Commons::Runtime
