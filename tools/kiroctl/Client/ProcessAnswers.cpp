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
        if (GetExitCode(exception) != ExitCode::Unreachable)
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
    constexpr std::chrono::milliseconds turn{100};
    const auto deadline = Clock::now() + RunningSystem::GetPatience();
    std::vector<String> silent;
    std::vector<String> left = processes;
    do
    {
        std::erase_if(left,
                      [&](const String& process)
                      {
                          const auto service = system.TryGetProcess(process, turn);
                          if (service && !TryAsk([&] { question(process, service); }))
                          {
                              silent.push_back(process);
                          }
                          return service != nullptr;
                      });
    } while (!left.empty() && Clock::now() < deadline);
    silent.insert(silent.end(), left.begin(), left.end());
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
