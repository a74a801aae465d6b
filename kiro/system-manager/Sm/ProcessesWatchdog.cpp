#include <Settings/ProcessSettings.hpp>
#include <Sm/ProcessesWatchdog.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <cstdlib>
#include <thread>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

std::vector<ProcessState> DescribeChildren(const Data::ProcessTable& processes)
{
    std::vector<ProcessState> states;
    for (const auto& [name, process] : processes)
    {
        if (process->process.IsStarted())
        {
            const bool hasExited = process->process.HasExited();
            states.push_back({name, process->process.GetId(), hasExited,
                              hasExited ? process->process.GetExit().ToString() : "running"});
        }
    }
    return states;
}

ProcessesWatchdog::ProcessesWatchdog(ISystemManagerHost& systemManagerHost, const Data::ProcessTable& processTable,
                                     const Settings::ProcessSettings& settings, std::function<void()> abortFunction)
    : host(systemManagerHost)
    , processes(processTable)
    , processSettings(settings)
    , abortProcess(std::move(abortFunction))
    , thread(
          "ProcessesWatchdog", [this] { Look(); }, settings.GetWatchdogIdleTime())
{
}

void ProcessesWatchdog::Start()
{
    lastLook = Clock::now();
    thread.Start();
}

void ProcessesWatchdog::Stop()
{
    thread.Stop();
}

void ProcessesWatchdog::Look()
{
    lastLook = Clock::now();
    for (const auto& [name, process] : processes)
    {
        if (!process->process.HasExited())
        {
            continue;
        }
        isChildGone = true;
        log.Fatal("Process '{}' has exited unexpectedly.", name);
        const auto states = DescribeChildren(processes);
        for (const auto& [otherName, other] : processes)
        {
            // Also the one that has exited: what it has started itself may still be there.
            other->process.Kill();
        }
        log.Fatal("All other living processes terminated immediately.");
        log.Fatal("Process '{0}' ended: {1}.", name, process->process.GetExit().ToString());
        host.RecordFailure("process gone", states);
        if (auto* logManager = Commons::Diagnostics::LogManager::TryGetInstance())
        {
            logManager->Flush();
        }
        std::this_thread::sleep_for(processSettings.GetWatchdogDelayTime());
        abortProcess();
        return;
    }
}

String ProcessesWatchdog::FindFault(std::chrono::milliseconds patience) const
{
    if (isChildGone)
    {
        return "A process has exited unexpectedly.";
    }
    if (thread.IsRunning() && Clock::now() - lastLook.load() > processSettings.GetWatchdogIdleTime() + patience)
    {
        return "The watchdog of the processes does not run any more.";
    }
    return {};
}

void ProcessesWatchdog::AbortProcess()
{
    Commons::Diagnostics::CrashHandler::Withdraw();
    std::abort();
}

} // namespace Vela::System::Kiro::Internal::Sm
