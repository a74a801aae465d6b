// The requests to the system as a whole: shutdown, restart and power-down.

#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"
#include "../CommandError.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <poll.h>

#include <algorithm>
#include <chrono>

// Some versions of the C library declare these without regard to C++.
extern "C"
{
#include <sys/pidfd.h>
}

namespace Vela::Kiroctl
{

namespace
{

using Manager = Services::ISystemManagerService;

/// The main process, as a descriptor that becomes readable when it ends: a system that no longer answers may hang, or
/// be busy with its end.
System::Commons::UniqueFd WatchMainProcess(Services::ISystemDiagnosticsService& diagnostics)
{
    for (const auto& process : diagnostics.GetProcesses())
    {
        if (process.isMain)
        {
            System::Commons::UniqueFd watch(::pidfd_open(process.processId, 0));
            if (!watch.IsValid())
            {
                System::Commons::ThrowSystemError(fmt::format("Cannot wait for process {}", process.processId));
            }
            return watch;
        }
    }
    throw CommandError(ExitCode::Failed, "The system does not tell its main process.");
}

/// @return false when the time is over first
bool AwaitEnd(const System::Commons::UniqueFd& process, std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    pollfd ended{process.Get(), POLLIN, 0};
    return System::Commons::RetryInterrupted(
               [&]
               {
                   const auto left =
                       std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
                   return ::poll(&ended, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
               }) > 0;
}

class Request final : public Command
{
public:
    Request(const char* requestName, void (Manager::*requestOperation)(), bool canWait)
        : name(requestName)
        , operation(requestOperation)
        , hasWait(canWait)
    {
    }

    void Declare(const CommandDeclaration& command) override
    {
        if (hasWait)
        {
            command.AddNumber("--wait", wait, {1, 86'400}, "Wait until the system has ended, at most this long",
                              {.name = "SECONDS"});
        }
    }

    ExitCode Run(Session& session) override
    {
        const RunningSystem system(session);
        const auto diagnostics = system.GetDiagnostics();
        const String systemName = diagnostics->GetStatus().name;
        const auto manager = system.GetManager();
        const auto mainProcess = wait > 0 ? WatchMainProcess(*diagnostics) : System::Commons::UniqueFd();
        try
        {
            ((*manager).*operation)();
        }
        catch (const InvalidOperationException& exception)
        {
            throw CommandError(ExitCode::Refused, "{}", exception.GetMessage());
        }
        const bool hasEnded = wait > 0 && AwaitEnd(mainProcess, std::chrono::seconds(wait));
        if (wait > 0 && !hasEnded)
        {
            throw CommandError(ExitCode::Negative, "System '{}' has not ended within {} s.", systemName, wait);
        }
        Output& output = session.GetOutput();
        if (output.IsJson())
        {
            output.WriteJson(Json{{"system", systemName}, {"request", name}, {"hasEnded", hasEnded}});
        }
        else
        {
            output.WriteLine(fmt::format("System '{}': {} {}.", systemName, name, hasEnded ? "done" : "requested"));
        }
        return ExitCode::Success;
    }

private:
    const char* name;
    void (Manager::*operation)();
    bool hasWait;
    int wait = 0;
};

} // namespace

std::unique_ptr<Command> CreateShutdown()
{
    return std::make_unique<Request>("shutdown", &Manager::Shutdown, true);
}

std::unique_ptr<Command> CreateRestart()
{
    return std::make_unique<Request>("restart", &Manager::Restart, false);
}

std::unique_ptr<Command> CreatePowerDown()
{
    return std::make_unique<Request>("power-down", &Manager::PowerDown, false);
}

} // namespace Vela::Kiroctl
