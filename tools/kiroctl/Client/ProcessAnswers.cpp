#include "ProcessAnswers.hpp"

#include "../CommandError.hpp"

#include <Vela/Exceptions.hpp>

#include <algorithm>
#include <chrono>

namespace Vela::Kiroctl
{

bool TryAsk(const std::function<void()>& question)
{
    try
    {
        question();
        return true;
    }
    catch (const Exception& exception)
    {
        if (GetExitCode(exception) == ExitCode::Refused)
        {
            throw;
        }
        return false;
    }
}

std::vector<String> AskProcesses(const RunningSystem& system, const std::vector<String>& processes,
                                 const ProcessQuestion& question)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds atOnce{100};
    std::vector<String> slow;
    std::vector<String> silent;
    // False when there is nobody to ask.
    const auto ask = [&](const String& process, std::chrono::milliseconds patience)
    {
        const auto service = system.TryGetProcess(process, patience);
        if (service && !TryAsk([&] { question(process, service); }))
        {
            silent.push_back(process);
        }
        return service != nullptr;
    };
    std::copy_if(processes.begin(), processes.end(), std::back_inserter(slow),
                 [&](const String& process) { return !ask(process, atOnce); });
    // All of them together get the time that one may take.
    const auto deadline = Clock::now() + RunningSystem::GetPatience();
    std::copy_if(slow.begin(), slow.end(), std::back_inserter(silent),
                 [&](const String& process)
                 {
                     const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
                     return !ask(process, std::max(left, std::chrono::milliseconds(0)));
                 });
    return silent;
}

void RequireAnswers(const char* what, const std::vector<String>& silentProcesses)
{
    if (!silentProcesses.empty())
    {
        throw CommandError(ExitCode::Unreachable, "The {} of process '{}' are missing: it does not answer.", what,
                           fmt::join(silentProcesses, "', '"));
    }
}

} // namespace Vela::Kiroctl
