// The requests to the system as a whole: shutdown, restart and power-down.

#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <Vela/Exceptions.hpp>

#include <chrono>
#include <thread>

namespace Vela::Kiroctl
{

namespace
{

using Manager = Services::ISystemManagerService;

/// Returns when the system no longer answers; false when the time is over first.
bool AwaitEnd(const std::shared_ptr<Services::ISystemDiagnosticsService>& diagnostics, std::chrono::seconds limit)
{
    constexpr std::chrono::milliseconds pause{100};
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < deadline)
    {
        try
        {
            diagnostics->GetStatus();
        }
        catch (const Exception&)
        {
            return true;
        }
        std::this_thread::sleep_for(pause);
    }
    return false;
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
        try
        {
            ((*manager).*operation)();
        }
        catch (const InvalidOperationException& exception)
        {
            throw CommandError(ExitCode::Refused, "{}", exception.GetMessage());
        }
        const bool hasEnded = wait > 0 && AwaitEnd(diagnostics, std::chrono::seconds(wait));
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
