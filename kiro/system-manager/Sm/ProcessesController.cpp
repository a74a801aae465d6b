#include <Settings/ProcessSettings.hpp>
#include <Sm/ChildCommandLine.hpp>
#include <Sm/ProcessesController.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Rsc/RscString.hpp>
#include <Vela/System/Rsc/RscVariant.hpp>

#include <poll.h>
#include <unistd.h>

#include <optional>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

using Commons::Chrono::TimeoutWatch;
using Data::ProcessData;

namespace
{

/// The longest pause between two looks at the processes.
constexpr std::chrono::milliseconds longestPause{500};

} // namespace

ProcessesController::ProcessesController(ISystemManagerHost& systemManagerHost, Data::ProcessTable& processTable,
                                         const Settings::ProcessSettings& settings, SlowCallWatcher& slowCallWatcher,
                                         ProcessConnector processConnector, std::function<void()> abortFunction)
    : host(systemManagerHost)
    , processes(processTable)
    , processSettings(settings)
    , slowCalls(slowCallWatcher)
    , connector(std::move(processConnector))
    , watchdog(host, processes, settings, std::move(abortFunction))
{
}

bool ProcessesController::IsMainProcess(const ProcessData& process) const
{
    return process.name == host.GetName();
}

void ProcessesController::StartProcesses(const ProgressFunction& onProgress)
{
    host.RunWithOriginalAffinity(
        [this]
        {
            for (const auto& [name, process] : processes)
            {
                if (!process->isExternal && !IsMainProcess(*process))
                {
                    StartChild(*process);
                }
            }
        });
    onProgress();

    TimeoutWatch watch(processSettings.GetStartWaitTime());
    watch.Start();
    if (!ConnectAll(watch, onProgress))
    {
        for (const auto& [name, process] : processes)
        {
            if (!process->isExternal && !process->processManagerService)
            {
                log.Error("Could not start process '{0}'.", name);
            }
        }
        GiveUpStarting();
        throw InvalidOperationException("Could not start all processes");
    }
    watchdog.Start();
}

void ProcessesController::StartChild(ProcessData& process)
{
    Commons::Runtime::ProcessStartOptions options;
    options.holdsSignals = true;
    options.environment = host.GetChildEnvironment();
    options.environment[parentProcessIdVariable] = std::to_string(getpid());
    auto* journal = slowCalls.GetJournal();
    if (journal != nullptr)
    {
        starting[process.name] = journal->Begin("StartProcess", "process", process.name, process.name);
    }
    try
    {
        if (process.binaryPath.empty())
        {
            process.process.Start(process.workingDirectory, host.GetExecutablePath(), BuildChildArguments(process),
                                  options);
        }
        else
        {
            Commons::Io::FileTrust::Require(Commons::Io::TrustedFile::Executable, process.binaryPath);
            process.process.Start(process.workingDirectory, process.binaryPath, process.args, options);
        }
    }
    catch (...)
    {
        log.Error("Could not start process '{0}'.", process.name);
        GiveUpStarting();
        throw;
    }
}

void ProcessesController::GiveUpStarting() noexcept
{
    for (const auto& [name, entry] : starting)
    {
        slowCalls.GetJournal()->End(entry, StepJournal::Outcome::Failed);
    }
    starting.clear();
}

bool ProcessesController::ConnectAll(const TimeoutWatch& watch, const ProgressFunction& onProgress)
{
    std::size_t reached = 0;
    for (bool isOver = watch.HasTimeout(); !isOver;)
    {
        bool hasFailed = false;
        ProcessData* firstMissing = nullptr;
        for (const auto& [name, process] : processes)
        {
            if (process->isExternal)
            {
                continue;
            }
            if (process->process.HasExited())
            {
                log.Error("Process '{}' has exited unexpectedly at startup.", name);
                hasFailed = true;
            }
            else if (!process->processManagerService && !Connect(*process, {}, {}) && firstMissing == nullptr)
            {
                firstMissing = process.get();
            }
        }
        if (services.size() != reached)
        {
            reached = services.size();
            onProgress();
        }
        if (hasFailed)
        {
            return false;
        }
        if (firstMissing == nullptr)
        {
            return true;
        }
        // The pause ends as soon as the process is reachable or a child has exited. Who is reached as the time ends may
        // have been the last one.
        const bool hasConnected =
            Connect(*firstMissing, std::min(longestPause, watch.GetRemaining()), GetExitDescriptors());
        isOver = !hasConnected && watch.HasTimeout();
    }
    return false;
}

bool ProcessesController::Connect(ProcessData& process, std::chrono::milliseconds limit,
                                  std::span<const int> wakeDescriptors)
{
    auto service = connector(process.name, limit, wakeDescriptors);
    if (!service)
    {
        return false;
    }
    process.processManagerService = service;
    services[process.name] = std::move(service);
    if (const auto started = starting.find(process.name); started != starting.end())
    {
        slowCalls.GetJournal()->End(started->second, StepJournal::Outcome::Done);
        starting.erase(started);
    }
    log.Info("Process '{0}' started successfully.", process.name);
    return true;
}

std::vector<int> ProcessesController::GetExitDescriptors() const
{
    std::vector<int> descriptors;
    for (const auto& [name, process] : processes)
    {
        if (process->process.IsStarted() && !process->process.HasExited())
        {
            descriptors.push_back(process->process.GetExitDescriptor());
        }
    }
    return descriptors;
}

void ProcessesController::SetEnvironmentVariable(const ServiceTable& services, const String& name, const String& value)
{
    const Rsc::RscString<128> remoteName(name);
    const Rsc::RscVariant<512> remoteValue(value);
    std::optional<CaughtException> firstFailure;
    for (const auto& [processName, service] : services)
    {
        try
        {
            if (!service->SetEnvironmentVariable(remoteName, remoteValue))
            {
                log.Warning("Process '{0}' did not take environment variable '{1}'.", processName, name);
            }
        }
        catch (...)
        {
            const auto failure = CaughtException::Current();
            log.Error("Environment variable '{0}' could not be set in process '{1}': {2}", name, processName,
                      failure.GetText());
            if (!firstFailure)
            {
                firstFailure = failure;
            }
        }
    }
    if (firstFailure)
    {
        firstFailure->Throw();
    }
}

void ProcessesController::StopProcesses()
{
    watchdog.Stop();

    TimeoutWatch watch(processSettings.GetStopWaitTime());
    watch.Start();
    // Each request has a thread of its own, so that a process that does not answer takes nobody else's time. The
    // threads end at the latest when the process on the other side is killed.
    std::vector<Commons::Threading::Thread> requests;
    for (const auto& [name, process] : processes)
    {
        if (!process->processManagerService)
        {
            continue;
        }
        if (IsMainProcess(*process))
        {
            RequestShutdownOf(*process);
            continue;
        }
        try
        {
            requests.emplace_back("Shutdown", [this, target = process] { RequestShutdownOf(*target); });
        }
        catch (...)
        {
            // Without a thread for the request the process is killed when the time is over.
            LogShutdownFailure(name);
        }
    }
    AwaitExits(watch);

    for (const auto& [name, process] : processes)
    {
        if (process->process.IsStarted())
        {
            ReportEnd(*process);
        }
        process->process.Kill();
    }
    requests.clear();
    for (const auto& [name, process] : processes)
    {
        process->processManagerService.reset();
    }
    services.clear();
}

void ProcessesController::RequestShutdownOf(const ProcessData& process) noexcept
{
    try
    {
        process.processManagerService->ShutdownProcess();
    }
    catch (...)
    {
        LogShutdownFailure(process.name);
    }
}

void ProcessesController::LogShutdownFailure(const String& processName) const noexcept
{
    log.Error("Process '{0}' could not be asked to end: {1}", processName, CaughtException::Current().GetText());
}

void ProcessesController::ReportEnd(const ProcessData& process) noexcept
{
    if (!process.process.HasExited())
    {
        log.Warning("Process '{0}' has not ended in time and is killed.", process.name);
        return;
    }
    const auto exit = process.process.GetExit();
    try
    {
        if (exit.bySignal || exit.code != 0)
        {
            log.Warning("Process '{0}' ended: {1}.", process.name, exit.ToString());
        }
    }
    catch (const std::bad_alloc&)
    {
        // The others are to be ended all the same.
        return;
    }
}

void ProcessesController::AwaitExits(const TimeoutWatch& watch) const
{
    for (auto living = GetExitDescriptors(); !living.empty() && !watch.HasTimeout(); living = GetExitDescriptors())
    {
        std::vector<pollfd> events;
        events.reserve(living.size());
        for (const int descriptor : living)
        {
            events.push_back({descriptor, POLLIN, 0});
        }
        const auto pause = std::min(longestPause, watch.GetRemaining());
        // Interrupted or not, the next round looks again.
        poll(events.data(), static_cast<nfds_t>(events.size()), static_cast<int>(pause.count()));
    }
}

const ServiceTable& ProcessesController::GetServices() const noexcept
{
    return services;
}

} // namespace Vela::System::Kiro::Internal::Sm
