#include "FaultScenario.hpp"

#include <Vela/System/Commons/UniqueFd.hpp>

#include <RecordedTrace.hpp>
#include <ThreadRest.hpp>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>

// Some versions of the C library declare these without regard to C++.
extern "C"
{
#include <sys/pidfd.h>
}

namespace Vela::Testing
{

namespace
{

using System::Commons::UniqueFd;

constexpr const char* isUp = "Application 'MainProcess' was setup successfully.";

/// Sanitizers must let processes die as they do without them.
std::string AddOptions(const char* variable, const char* options)
{
    const char* present = std::getenv(variable);
    return std::string(present != nullptr ? present : "") + ":" + options;
}

std::map<std::string, std::string> MakeEnvironment(const TestSystem& system)
{
    return {{"VELA_PATH_RUNTIME_DIR", system.GetRuntimeDirectory()},
            {"RECORDING_TRACE", system.directory / "trace"},
            {"RECORDING_SCRIPT", system.directory / "script"},
            {"ASAN_OPTIONS", AddOptions("ASAN_OPTIONS", "handle_segv=0")},
            {"TSAN_OPTIONS", AddOptions("TSAN_OPTIONS", "handle_segv=0:report_thread_leaks=0")}};
}

UniqueFd Watch(pid_t process)
{
    return UniqueFd(pidfd_open(process, 0));
}

void AwaitDeath(const UniqueFd& process)
{
    pollfd ended{process.Get(), POLLIN, 0};
    const auto patience = std::chrono::milliseconds(StartedProcess::patience);
    if (poll(&ended, 1, static_cast<int>(patience.count())) != 1)
    {
        throw std::runtime_error("The process that is to die lives");
    }
}

} // namespace

FaultScenario::FaultScenario(const FaultCell& faultCell)
    : cell(faultCell)
    , expected(faultCell)
{
    for (const char* fifo : {"gate", "trigger", "hold"})
    {
        if (mkfifo((system.directory / fifo).c_str(), S_IRUSR | S_IWUSR) != 0)
        {
            throw std::runtime_error("Cannot make a FIFO");
        }
    }
}

std::string FaultScenario::Run()
{
    try
    {
        WriteDocuments(false);
        main.emplace(TestSystem::GetBuiltFile("bin/Vela.System.Application"), std::vector<std::string>{},
                     MakeEnvironment(system), system.directory.GetPath().string());
        Reach();
        Inflict();
        Finish();
        Check();
        CheckNextStart();
    }
    catch (const std::exception& exception)
    {
        Require(false, exception.what());
    }
    if (failures.empty())
    {
        return {};
    }
    return cell.GetName() + "\n" + failures + "--- script\n" + system.directory.Read("script") + "--- trace\n" +
           system.directory.Read("trace") + "--- output\n" + (main ? main->GetOutput() : "") + "---\n";
}

void FaultScenario::Reach()
{
    if (!cell.IsForward())
    {
        main->AwaitLine(isUp);
    }
    if (cell.phase == Phase::PowerDown)
    {
        Open("trigger");
    }
    else if (cell.IsBackward())
    {
        BeginBackwardPhase();
    }
    if (cell.phase != Phase::Idle)
    {
        const bool isBefore = cell.GetPhase().group == Group::Before;
        reachedLine = main->AwaitLine((isBefore ? "Library in " + cell.GetProcess() : std::string("Faulty")) +
                                      " takes step " + cell.GetPhase().step);
    }
    else if (cell.IsOwnFault())
    {
        AwaitFirstLook();
        const UniqueFd victim = Watch(FindProcess(cell.GetProcess()));
        Open("gate");
        AwaitDeath(victim);
    }
}

void FaultScenario::BeginBackwardPhase()
{
    if (IsShutdownRequested())
    {
        Open("trigger");
        return;
    }
    main->Signal(SIGTERM);
    main->AwaitLine("requests the shutdown of the system");
}

void FaultScenario::Inflict()
{
    const bool isToldAlready = cell.IsBackward();
    switch (cell.fault)
    {
    case Fault::KillChild:
    {
        AwaitFirstLook();
        const pid_t process = FindProcess(cell.GetKilledProcess());
        const UniqueFd victim = Watch(process);
        kill(process, SIGKILL);
        AwaitDeath(victim);
        break;
    }
    case Fault::KillMain:
        main->Signal(SIGKILL);
        break;
    case Fault::Terminate:
        kill(FindProcess(cell.GetProcess()), SIGTERM);
        if (cell.phase != Phase::Connect)
        {
            main->AwaitLine("requests the shutdown of the system");
        }
        break;
    case Fault::InterruptGroup:
        main->SignalGroup(SIGINT);
        main->AwaitLine("requests the shutdown of the system");
        break;
    case Fault::Hang:
    case Fault::TerminateTwice:
        if (cell.fault == Fault::Hang && cell.phase == Phase::Connect)
        {
            return;
        }
        if (cell.fault == Fault::Hang)
        {
            main->AwaitLine(std::string(cell.GetPhase().call) + " of ");
            Require(main->HasOutput("in process '" + cell.GetProcess() + "' has not returned after"),
                    "the step that hangs is not named");
        }
        if (!isToldAlready)
        {
            main->Signal(SIGTERM);
            main->AwaitLine("requests the shutdown of the system");
        }
        main->Signal(SIGTERM);
        break;
    case Fault::StopAndContinue:
        StopAndContinue(FindProcess(cell.GetProcess()));
        break;
    default:
        break;
    }
}

/// The watchdog's first look follows its start soon, not at once. Where it is not to find what dies, it must be over.
void FaultScenario::AwaitFirstLook() const
{
    if (cell.phase != Phase::Connect)
    {
        AwaitRest(main->GetId(), "ProcessesWatchd");
    }
}

void FaultScenario::StopAndContinue(pid_t process)
{
    StopAllThreads(process);
    if (process != main->GetId() && cell.phase != Phase::Connect)
    {
        if (cell.phase == Phase::Idle)
        {
            main->Signal(SIGTERM);
        }
        main->AwaitLine("in process '" + cell.GetProcess() + "' has not returned after");
    }
    kill(process, SIGCONT);
}

void FaultScenario::Finish()
{
    const bool isReleased = expected.outcome == Outcome::EndsInOrder ||
                            (cell.phase == Phase::Connect && expected.outcome == Outcome::MainDies);
    if (IsHeldAtGate() && isReleased && cell.GetKilledProcess() != cell.GetProcess())
    {
        if (expected.outcome == Outcome::MainDies)
        {
            AwaitDeath(Watch(main->GetId()));
        }
        Open("gate");
    }
    const bool comesUp = expected.outcome == Outcome::EndsInOrder || expected.outcome == Outcome::RemovesFaulty;
    const bool isTold =
        cell.IsBackward() || cell.fault == Fault::Terminate || cell.fault == Fault::InterruptGroup ||
        (cell.phase == Phase::Idle && cell.fault == Fault::StopAndContinue && cell.place != Place::Main);
    if (comesUp && !isTold)
    {
        if (cell.IsForward())
        {
            main->AwaitLine(isUp);
        }
        main->Signal(SIGTERM);
    }
    const int exitCode = main->AwaitEnd();
    Require(exitCode == expected.exitCode,
            "exit code " + std::to_string(exitCode) + " instead of " + std::to_string(expected.exitCode));
}

void FaultScenario::Check()
{
    for (const std::string& line : expected.lines)
    {
        Require(main->HasOutput(line), "the log lacks: " + line);
    }
    for (const std::string& text : expected.absentTexts)
    {
        Require(!main->HasOutput(text), "the log has: " + text);
    }
    const auto check = [&](const char* component, const ExpectedSteps& steps)
    {
        const std::string actual = GetRecordedSteps(system.directory.Read("trace"), component);
        Require(steps.Matches(actual), std::string(component) + " took: " + actual +
                                           "\n  must at least: " + steps.least + "\n  and at most: " + steps.most);
    };
    check("First", expected.first);
    check("Faulty", expected.faulty);
    check("Last", expected.last);
    if (expected.trace)
    {
        const std::string actual = ReadTraceOfComponents();
        Require(actual == *expected.trace, "the steps came as\n" + actual + "  instead of as\n" + *expected.trace);
    }
    CheckLeftovers("at the end", expected.MayLeaveNames());
    CheckRecord("at the end");
}

std::string FaultScenario::ReadTraceOfComponents() const
{
    std::istringstream trace(system.directory.Read("trace"));
    std::string text;
    for (std::string line; std::getline(trace, line);)
    {
        const bool isOfLibrary = line.starts_with("-");
        text += isOfLibrary ? "" : line + "\n";
    }
    return text;
}

void FaultScenario::CheckNextStart()
{
    WriteDocuments(true);
    StartedProcess next(TestSystem::GetBuiltFile("bin/Vela.System.Application"), {}, MakeEnvironment(system),
                        system.directory.GetPath().string());
    next.AwaitLine(isUp);
    next.Signal(SIGTERM);
    const int exitCode = next.AwaitEnd();
    const bool isHealthy = exitCode == 0 && !next.HasOutput("Error") && !next.HasOutput("Warning");
    Require(isHealthy, "the next start went wrong: " + std::to_string(exitCode) + "\n" + next.GetOutput());
    CheckLeftovers("after the next start", false);
    CheckRecord("after the next start");
}

void FaultScenario::CheckRecord(const std::string& when)
{
    const std::filesystem::path records = std::filesystem::path(system.GetRuntimeDirectory()) / "crashes";
    int count = 0;
    std::error_code isMissing;
    for (const auto& entry : std::filesystem::directory_iterator(records, isMissing))
    {
        const std::string name = entry.path().filename().string();
        // A failed start leaves its times besides, which are no record.
        count += name.ends_with(".txt") ? 1 : 0;
        Require(name.ends_with(".txt") || name == "timeline.json",
                std::string("a stray record ").append(when).append(": ").append(name));
    }
    Require(count == (expected.leavesRecord ? 1 : 0), "crash records " + when + ": " + std::to_string(count));
}

void FaultScenario::CheckLeftovers(const std::string& when, bool mayLeaveNames)
{
    const std::set<std::string> own{"gate",
                                    "trigger",
                                    "hold",
                                    "script",
                                    "trace",
                                    "run",
                                    "connect.sh",
                                    "Default.kiro.settings",
                                    "Default.kiro.config"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(system.directory.GetPath()))
    {
        const std::string name = entry.path().filename().string();
        const bool isRecord = name == "crashes" || entry.path().parent_path().filename() == "crashes";
        const bool isExcused = mayLeaveNames && entry.path().parent_path() == system.GetRuntimeDirectory();
        if (isExcused || (isRecord && expected.leavesRecord))
        {
            continue;
        }
        Require(own.contains(name), std::string("left ").append(when).append(": ").append(name));
    }
}

void FaultScenario::Require(bool isMet, const std::string& what)
{
    if (!isMet)
    {
        failures += "* " + what + "\n";
    }
}

pid_t FaultScenario::FindProcess(const std::string& name) const
{
    if (name == "MainProcess")
    {
        return main->GetId();
    }
    const std::size_t found = main->GetOutput().find(name + "[");
    if (found == std::string::npos)
    {
        throw std::runtime_error("No output of process " + name);
    }
    return StartedProcess::GetProcessId(main->GetOutput().substr(found));
}

void FaultScenario::Open(const std::string& fifo) const
{
    // The opening returns when the component has opened its end as well.
    close(open((system.directory / fifo).c_str(), O_WRONLY | O_CLOEXEC));
}

} // namespace Vela::Testing
