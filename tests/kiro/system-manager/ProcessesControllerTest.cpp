#include "CapturedLog.hpp"
#include "FakeHost.hpp"
#include "FakeProcess.hpp"

#include <Config/KiroConfiguration.hpp>
#include <Settings/KiroSettings.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Sm/ChildCommandLine.hpp>
#include <Sm/ProcessesController.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <ScopedTrustPolicy.hpp>
#include <TemporaryDirectory.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <list>

using namespace Vela;
using namespace Vela::Testing;
using namespace Vela::System::Kiro::Internal;
using namespace Vela::System::Kiro::Internal::Sm;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Vela::System::Commons::Environment;
using namespace std::chrono_literals;

namespace
{

class ProcessesControllerTest : public testing::Test
{
protected:
    ProcessesControllerTest()
    {
        Environment::Setup();
        SetTimes("startWaitTime='60s' stopWaitTime='60s' watchdogDelayTime='1ms' watchdogIdleTime='1h'");
    }

    ~ProcessesControllerTest() override
    {
        controller.reset();
        Environment::Dispose();
    }

    void SetTimes(const std::string& attributes)
    {
        const auto document =
            directory.Write("test.settings", "<KiroSettingsDocument><ProcessSettings singleProcess='false' " +
                                                 attributes + "/></KiroSettingsDocument>");
        settings = std::make_unique<Settings::KiroSettings>();
        Settings::KiroSettingsLoader::Load(document, *settings, false);
        controller = std::make_unique<ProcessesController>(
            host, processes, settings->GetProcessSettings(), slowCalls,
            [this](const String& name, std::chrono::milliseconds limit, std::span<const int> wakeDescriptors)
            { return Connect(name, limit, wakeDescriptors); },
            [] { FAIL() << "No child has gone while it was watched."; });
    }

    /// Connects to the fake services that are there; a wait for others is the wait for a child's end.
    std::shared_ptr<FakeProcess> Connect(const String& name, std::chrono::milliseconds limit,
                                         std::span<const int> wakeDescriptors)
    {
        EXPECT_LE(limit, 500ms);
        if (const auto found = services.find(name); found != services.end())
        {
            return found->second;
        }
        if (limit > 0ms && name == lateProcess)
        {
            poll(nullptr, 0, static_cast<int>(limit.count()));
            return services[name] = std::make_shared<FakeProcess>(name, journal);
        }
        if (limit > 0ms)
        {
            std::vector<pollfd> events;
            for (const int descriptor : wakeDescriptors)
            {
                events.push_back({descriptor, POLLIN, 0});
            }
            poll(events.data(), static_cast<nfds_t>(events.size()), static_cast<int>(limit.count()));
        }
        return nullptr;
    }

    FakeProcess& AddService(const std::string& name)
    {
        return *(services[name] = std::make_shared<FakeProcess>(name, journal));
    }

    Config::Process& Add(const std::string& name)
    {
        configured.emplace_back().name = name;
        return configured.back();
    }

    /// A child that runs a shell command instead of the runtime's executable.
    Config::Process& AddShell(const std::string& name, const std::string& command)
    {
        Config::Process& process = Add(name);
        process.binaryPath = "/bin/sh";
        process.args = "-c '" + command + "'";
        return process;
    }

    void Configure(bool singleProcess = false)
    {
        Config::KiroConfiguration configuration;
        for (const auto& process : configured)
        {
            configuration.processes.AddItem(process);
        }
        controller->SetupConfig(configuration, singleProcess);
    }

    TemporaryDirectory directory;
    CapturedLog log;
    Journal journal;
    FakeHost host;
    SlowCallWatcher slowCalls{0ms};
    std::map<std::string, std::shared_ptr<FakeProcess>> services;
    /// Answers as soon as the time for it is over.
    std::string lateProcess;
    std::list<Config::Process> configured;
    Data::ProcessTable processes;
    std::unique_ptr<Settings::KiroSettings> settings;
    std::unique_ptr<ProcessesController> controller;
};

} // namespace

TEST(ChildCommandLine, NamesWhatIsSetAndQuotesWhatNeedsIt)
{
    Data::ProcessData process;
    process.name = "Control";
    process.core = 0;
    process.localTcpPort = -1;
    EXPECT_EQ(BuildChildArguments(process), "--child=true --name=Control");

    process.name = "Tank \"A\"";
    process.settingsPath = "/opt/my plant/it's.settings";
    process.core = 2;
    process.localTcpPort = 4711;
    process.debugBreak = true;
    process.args = "--loglevel Trace";
    const auto text = BuildChildArguments(process);
    EXPECT_THAT(text, HasSubstr(" --core=2 --localTcpPort=4711 --debugBreak=true --loglevel Trace"));
    EXPECT_THAT(System::Commons::Runtime::SplitArguments(text),
                ElementsAre("--child=true", "--name=Tank \"A\"", "--settings=/opt/my plant/it's.settings", "--core=2",
                            "--localTcpPort=4711", "--debugBreak=true", "--loglevel", "Trace"));
}

TEST_F(ProcessesControllerTest, FillsTheTableAndWarnsOfWhatHasNoEffect)
{
    auto& own = AddShell("Own", "true");
    own.core = 3;
    own.processOwner = "operator";
    auto& foreign = Add("Foreign");
    foreign.isExternal = true;
    foreign.args = "--fast";
    auto& plain = Add("Plain");
    plain.settingsPath = "/etc/plain.settings";
    plain.core = 1;
    plain.workingDirectory = "/tmp";
    plain.debugBreak = true;
    plain.localTcpPort = 99;
    Configure();
    ASSERT_THAT(processes, testing::SizeIs(4));
    EXPECT_EQ(processes["Main"]->name, "Main");
    EXPECT_TRUE(processes["Foreign"]->isExternal);
    EXPECT_EQ(processes["Plain"]->settingsPath, "/etc/plain.settings");
    EXPECT_EQ(processes["Plain"]->workingDirectory, "/tmp");
    EXPECT_EQ(processes["Plain"]->localTcpPort, 99);
    EXPECT_EQ(processes["Plain"]->core, 1);
    EXPECT_TRUE(processes["Plain"]->debugBreak);
    EXPECT_EQ(processes["Own"]->processOwner, "operator");
    EXPECT_THAT(log.GetLines("Warning"),
                ElementsAre("Warning: Process 'Foreign': attribute 'args' has no effect on an external process.",
                            HasSubstr("'Own': attribute 'processOwner' has no effect"),
                            HasSubstr("'Own': attribute 'core' has no effect on a process with an executable")));
}

TEST_F(ProcessesControllerTest, LetsEveryEntryStandForTheMainProcessInSingleProcessMode)
{
    Add("A").isExternal = true;
    Add("");
    Configure(true);
    ASSERT_THAT(processes, testing::SizeIs(1));
    EXPECT_EQ(processes["Main"]->name, "Main");
    EXPECT_FALSE(processes["Main"]->isExternal);
    AddService("Main");
    controller->StartProcesses();
    controller->StopProcesses();
    EXPECT_THAT(journal.Take(), ElementsAre("Main: ShutdownProcess"));
}

TEST_F(ProcessesControllerTest, StartsChildrenConnectsToAllAndStopsThem)
{
    Add("Foreign").isExternal = true;
    AddShell("B", "exec sleep 1000");
    AddShell("A", "exec sleep 1000");
    Configure();
    AddService("Main");
    for (const char* name : {"A", "B"})
    {
        // What the runtime does on this request: the process ends. A shell has not asked for SIGTERM, which a child
        // is started with held.
        AddService(name).reactions["ShutdownProcess"] = [this, name]
        {
            kill(processes[name]->process.GetId(), SIGKILL);
        };
    }
    std::vector<std::size_t> progress;
    controller->StartProcesses(
        [&]
        {
            EXPECT_TRUE(processes["A"]->process.IsStarted() && processes["B"]->process.IsStarted());
            progress.push_back(controller->GetServices().size());
        });
    EXPECT_THAT(progress, ElementsAre(0, 3));
    EXPECT_THAT(log.GetLines("Info"),
                ElementsAre("Info: Process 'A' started successfully.", "Info: Process 'B' started successfully.",
                            "Info: Process 'Main' started successfully."));
    EXPECT_THAT(controller->GetServices(), testing::SizeIs(3));
    EXPECT_FALSE(processes["Foreign"]->process.IsStarted());
    EXPECT_FALSE(processes["Main"]->process.IsStarted());
    EXPECT_EQ(controller->GetWatchdog().FindFault(1h), "");

    controller->StopProcesses();
    auto calls = journal.Take();
    std::sort(calls.begin(), calls.end());
    EXPECT_THAT(calls, ElementsAre("A: ShutdownProcess", "B: ShutdownProcess", "Main: ShutdownProcess"));
    EXPECT_TRUE(processes["A"]->process.HasExited());
    EXPECT_TRUE(processes["B"]->process.HasExited());
    EXPECT_THAT(controller->GetServices(), IsEmpty());
    EXPECT_EQ(processes["A"]->processManagerService, nullptr);
    EXPECT_THAT(log.GetLines("Warning"), ElementsAre("Warning: Process 'A' ended: signal 9 (Killed).",
                                                     "Warning: Process 'B' ended: signal 9 (Killed)."));
    controller->StopProcesses();
    EXPECT_THAT(journal.Take(), IsEmpty());
}

TEST_F(ProcessesControllerTest, StartsTheMainExecutableWithItsOwnArgumentsInTheWorkingDirectory)
{
    const auto script = directory.Write("application", "#!/bin/sh\necho \"$@\" > arguments\n"
                                                       "echo \"$VELA_PARENT_PID $CHILD_VARIABLE\" > variables\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    host.executablePath = script;
    std::filesystem::create_directory(directory / "work");
    Add("Child").workingDirectory = directory / "work";
    Configure();
    AddService("Main");
    EXPECT_THROW(controller->StartProcesses(), InvalidOperationException);
    EXPECT_EQ(directory.Read("work/arguments"), "--child=true --name=Child\n");
    EXPECT_EQ(directory.Read("work/variables"), std::to_string(getpid()) + " from the host\n");
}

TEST_F(ProcessesControllerTest, FailsAsSoonAsAChildDiesAtStart)
{
    AddShell("Dead", "exit 3");
    AddShell("Alive", "exec sleep 1000");
    Configure();
    AddService("Main");
    AddService("Alive");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THROW(controller->StartProcesses(), InvalidOperationException);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_THAT(log.GetLines("Error"), ElementsAre("Error: Process 'Dead' has exited unexpectedly at startup.",
                                                   "Error: Could not start process 'Dead'."));
    AddService("Alive").reactions["ShutdownProcess"] = [this]
    {
        kill(processes["Alive"]->process.GetId(), SIGKILL);
    };
    processes["Alive"]->processManagerService = services["Alive"];
    controller->StopProcesses();
    EXPECT_TRUE(processes["Alive"]->process.HasExited());
}

TEST_F(ProcessesControllerTest, FailsWhenAConnectedChildIsFoundDead)
{
    AddShell("Gone", "exit 0");
    AddShell("Late", "exec sleep 1000");
    Configure();
    AddService("Main");
    AddService("Gone");
    EXPECT_THROW(controller->StartProcesses(), InvalidOperationException);
    EXPECT_THAT(log.GetLines("Error"), testing::Contains("Error: Process 'Gone' has exited unexpectedly at startup."));
    SetTimes("stopWaitTime='0'");
    controller->StopProcesses();
}

TEST_F(ProcessesControllerTest, ReportsEveryProcessThatIsNotReachableInTime)
{
    SetTimes("startWaitTime='0' stopWaitTime='0'");
    AddShell("A", "exec sleep 1000");
    Add("Foreign").isExternal = true;
    Configure();
    AddService("Main");
    AddService("A");
    try
    {
        controller->StartProcesses();
        FAIL();
    }
    catch (const InvalidOperationException& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "Could not start all processes");
    }
    EXPECT_THAT(log.GetLines("Error"),
                ElementsAre("Error: Could not start process 'A'.", "Error: Could not start process 'Main'."));
    controller->StopProcesses();
    EXPECT_TRUE(processes["A"]->process.HasExited());
}

TEST_F(ProcessesControllerTest, TakesAProcessThatIsReachedAsTheTimeEnds)
{
    SetTimes("startWaitTime='500ms' stopWaitTime='0'");
    AddShell("A", "exec sleep 1000");
    Configure();
    AddService("Main");
    lateProcess = "A";
    controller->StartProcesses();
    EXPECT_THAT(log.GetLines("Error"), IsEmpty());
    EXPECT_EQ(controller->GetServices().size(), 2U);
    controller->StopProcesses();
}

TEST_F(ProcessesControllerTest, NamesTheProcessWhoseExecutableIsMissing)
{
    Add("Lost").binaryPath = directory / "missing";
    Configure();
    EXPECT_THROW(controller->StartProcesses(), Exception);
    EXPECT_THAT(log.GetLines("Error"), ElementsAre("Error: Could not start process 'Lost'."));
}

TEST_F(ProcessesControllerTest, RunsNoExecutableThatOthersCanChangeWhenThatIsRefused)
{
    const ScopedTrustPolicy refuse(System::Commons::Io::TrustedFile::Executable,
                                   System::Commons::Io::TrustPolicy::Refuse);
    AddShell("Good", "exit 0");
    const std::string tool = directory.Write("tool", "#!/bin/sh\ntouch '" + directory / "ran" + "'\n");
    std::filesystem::permissions(tool, std::filesystem::perms(0777));
    Add("Open").binaryPath = tool;
    Configure();
    EXPECT_THROW(controller->StartProcesses(), InvalidOperationException);
    EXPECT_THAT(log.GetLines("Error"), ElementsAre("Error: Could not start process 'Open'."));
    controller->StopProcesses();
    EXPECT_FALSE(std::filesystem::exists(directory / "ran"));
}

TEST_F(ProcessesControllerTest, KillsWhatDoesNotEndWithinOneDeadlineForAll)
{
    SetTimes("startWaitTime='60s' stopWaitTime='300ms'");
    AddShell("Broken", "exec sleep 1000");
    AddShell("Deaf", "exec sleep 1000");
    AddShell("Hung", "exec sleep 1000");
    Configure();
    AddService("Main");
    AddService("Broken").reactions["ShutdownProcess"] = Throw(RscException("connection lost"));
    AddService("Deaf");
    // A call that does not return before its process is gone.
    AddService("Hung").reactions["ShutdownProcess"] = [this]
    {
        processes["Hung"]->process.WaitForExit(-1);
    };
    controller->StartProcesses();
    controller->StopProcesses();
    EXPECT_THAT(journal.Take(), testing::SizeIs(4));
    EXPECT_THAT(log.GetLines("Error"),
                ElementsAre("Error: Process 'Broken' could not be asked to end: RscException: connection lost"));
    EXPECT_THAT(log.GetLines("Warning"), ElementsAre("Warning: Process 'Broken' has not ended in time and is killed.",
                                                     "Warning: Process 'Deaf' has not ended in time and is killed.",
                                                     "Warning: Process 'Hung' has not ended in time and is killed."));
    for (const char* name : {"Broken", "Deaf", "Hung"})
    {
        EXPECT_TRUE(processes[name]->process.HasExited());
    }
}

TEST_F(ProcessesControllerTest, LoadsAndUnloadsTheLibrariesOfEachConnectedProcess)
{
    Configure();
    for (const char* name : {"Main", "Other", "Unconnected"})
    {
        auto process = std::make_shared<Data::ProcessData>();
        process->name = name;
        process->libraries["L"] = std::make_shared<Data::LibraryData>();
        process->libraries["L"]->path = "/lib/libL.so";
        processes[name] = process;
    }
    FakeProcess& other = AddService("Other");
    processes["Main"]->processManagerService = std::make_shared<FakeProcess>("Main", journal);
    processes["Other"]->processManagerService = services["Other"];

    controller->LoadLibraries();
    other.reactions["UnloadLibrary L"] = Throw(KeyNotFoundException("Could not find library 'L'."));
    controller->UnloadLibraries();
    EXPECT_THAT(journal.Take(), ElementsAre("Main: LoadLibrary L /lib/libL.so", "Other: LoadLibrary L /lib/libL.so",
                                            "Main: UnloadLibrary L", "Other: UnloadLibrary L"));
    EXPECT_TRUE(log.Has("Info: Library 'L' in process 'Other' loaded."));
    EXPECT_TRUE(log.Has("Info: Library 'L' in process 'Main' unloaded."));

    other.canLoadLibraries = false;
    try
    {
        controller->LoadLibraries();
        FAIL();
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "Library 'L' couldn't loaded in process Other.");
    }
    EXPECT_TRUE(log.Has("Error: Library 'L' couldn't loaded in process Other."));
}

TEST_F(ProcessesControllerTest, TellsEveryProcessOfAVariableAndThenOfTheFirstFailure)
{
    FakeProcess& first = AddService("A");
    AddService("B");
    const ServiceTable table(services.begin(), services.end());
    first.reactions["SetEnvironmentVariable NAME value"] = Throw(RscException("gone"));
    EXPECT_THROW(ProcessesController::SetEnvironmentVariable(table, "NAME", "value"), RscException);
    EXPECT_THAT(journal.Take(),
                ElementsAre("A: SetEnvironmentVariable NAME value", "B: SetEnvironmentVariable NAME value"));
    EXPECT_THROW(ProcessesController::SetEnvironmentVariable(table, std::string(128, 'n'), "v"), ArgumentException);
    EXPECT_THROW(ProcessesController::SetEnvironmentVariable(table, "n", std::string(513, 'v')), ArgumentException);
    EXPECT_THAT(journal.Take(), IsEmpty());
}
