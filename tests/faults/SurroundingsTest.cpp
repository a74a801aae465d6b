// What lies around a system is broken, full, short, or busy.

#include <Emulation.hpp>
#include <SystemFixture.hpp>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

namespace Vela::Testing
{
namespace
{

class SurroundingsTest : public SystemTest
{
protected:
    SurroundingsTest()
    {
        Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}, {"InMain", "MainProcess"}});
    }

    /// Runs the executable behind some shell commands.
    [[nodiscard]] StartedProcess StartBehind(const std::string& commands, const std::string& arguments = "") const
    {
        const std::string executable = TestSystem::GetBuiltFile("bin/Vela.System.Application");
        return StartedProcess("/bin/sh", {"-c", commands + " exec '" + executable + "' " + arguments},
                              system.environment, system.directory.GetPath().string());
    }

    /// Runs the executable in a mount namespace of its own.
    [[nodiscard]] StartedProcess StartWithMount(const std::string& mount) const
    {
        const std::string inner = mount + " && exec '" + TestSystem::GetBuiltFile("bin/Vela.System.Application") + "'";
        std::vector<std::string> arguments{"--mount", "/bin/sh", "-c", inner};
        if (geteuid() != 0)
        {
            arguments.insert(arguments.begin(), "--map-root-user");
        }
        return StartedProcess("/usr/bin/unshare", arguments, system.environment, system.directory.GetPath().string());
    }

    void AddSanitizerOptions(const std::string& options)
    {
        for (const char* variable : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
        {
            const char* present = std::getenv(variable);
            system.environment[variable] = std::string(present != nullptr ? present : "") + ":" + options;
        }
    }

    void EndInOrder(StartedProcess& main) const
    {
        main.AwaitLine(isUp);
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    }

    /// A library of the configuration is another file.
    void ConfigureLibrary(const std::string& process, const std::string& path) const
    {
        system.WriteConfig("<Processes><Process name='" + process +
                           "'/></Processes><Libraries><Library name='Broken' binaryPath='" + path +
                           "'/></Libraries><Components><Component name='C' type='Recorder' library='Broken' process='" +
                           process + "'/></Components>");
    }
};

TEST_F(SurroundingsTest, AFullDiskTakesTheLogButNotTheSystem)
{
    mkdir((system.directory / "log").c_str(), S_IRWXU);
    system.WriteSettings("<LogSettings logDir='log'/>");
    const std::string gate = system.directory / "gate";
    ASSERT_EQ(mkfifo(gate.c_str(), S_IRUSR | S_IWUSR), 0);
    WriteScript("InMain Start await " + gate + "\n");
    // Room for one block: the first lines fit, no others do.
    StartedProcess main = StartWithMount("mount -t tmpfs -o size=4k tmpfs log && dd if=/dev/zero of=log/filler bs=3k "
                                         "count=1 2>/dev/null && echo mounted");
    main.AwaitLine("mounted");
    // The log cannot tell how far it is.
    close(open(gate.c_str(), O_WRONLY | O_CLOEXEC));
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_TRUE(GetSteps("InMain").ends_with("Start Stop ResetConfig Dispose Destroy")) << GetSteps("InMain");
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(SurroundingsTest, ADiskThatCannotBeWrittenRefusesTheStartAndSaysWhere)
{
    mkdir((system.directory / "log").c_str(), S_IRWXU);
    const std::pair<const char*, const char*> cases[] = {
        {"mount -t tmpfs -o ro,mode=700 tmpfs run", "Read-only file system"},
        {"mount -t tmpfs -o nr_inodes=2,mode=700 tmpfs run && touch run/filler", "No space left on device"},
    };
    for (const auto& [mount, reason] : cases)
    {
        StartedProcess main = StartWithMount(mount);
        EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
        EXPECT_TRUE(main.HasOutput(system.GetRuntimeDirectory())) << main.GetOutput();
        EXPECT_TRUE(main.HasOutput(reason)) << main.GetOutput();
    }
    system.WriteSettings("<LogSettings logDir='log'/>");
    StartedProcess main = StartWithMount("mount -t tmpfs -o ro tmpfs log");
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("MainProcess.log")) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Read-only file system")) << main.GetOutput();
}

#ifndef VELA_SANITIZED
// A sanitizer itself needs descriptors: without them it takes sound objects for broken ones.
TEST_F(SurroundingsTest, AnyNumberOfDescriptorsGivesAWholeSystemOrAClearError)
{
    system.WriteSettings("<ProcessSettings singleProcess='false' startWaitTime='2s' stopWaitTime='1s'/>");
    int failures = 0;
    bool isEnough = false;
    // An emulator needs one of its own.
    for (int limit = IsEmulated() ? 5 : 4; !isEnough; ++limit)
    {
        ASSERT_LT(limit, 200) << "so many descriptors must do";
        system.directory.Write("trace", "");
        StartedProcess main = StartBehind("ulimit -n " + std::to_string(limit) + ";");
        try
        {
            EndInOrder(main);
            isEnough = main.GetOutput().find("Error") == std::string::npos &&
                       main.GetOutput().find("Warning") == std::string::npos;
        }
        catch (const std::runtime_error&)
        {
            ++failures;
            const int exitCode = main.AwaitEnd();
            // The dynamic loader needs descriptors as well, ends with a code of its own and knows the number only.
            EXPECT_TRUE(exitCode == 1 || exitCode == 2 || exitCode == 127) << limit << ": " << exitCode << "\n"
                                                                           << main.GetOutput();
            const std::string loaderText = "shared object file: Error " + std::to_string(EMFILE);
            EXPECT_TRUE(main.HasOutput("oo many open files") || (exitCode == 127 && main.HasOutput(loaderText)))
                << limit << ": " << main.GetOutput();
        }
        // A record needs descriptors as well.
        std::ignore = system.TakeCrashRecord();
        EXPECT_EQ(system.FindLeftovers(), "") << limit << ": " << main.GetOutput();
    }
    EXPECT_GT(failures, 5);
}
#endif

TEST_F(SurroundingsTest, ALibraryThatCannotBeLoadedEndsTheStartInOrder)
{
    const std::string good = TestSystem::GetBuiltFile("lib/libRecording.so");
    std::ifstream stream(good, std::ios::binary);
    const std::string image{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    std::string foreign = image;
    const auto machine = static_cast<char>(foreign[offsetof(Elf64_Ehdr, e_machine)] == EM_ARM ? EM_386 : EM_ARM);
    foreign[offsetof(Elf64_Ehdr, e_machine)] = machine;

    std::vector<std::pair<std::string, std::string>> cases{
        {system.directory / "libMissing.so", "libMissing.so' does not exist"},
        {system.directory.Write("libText.so", "This is no library, but it is long enough to look like something."),
         "libText.so"},
        {system.directory.Write("libEmpty.so", ""), "libEmpty.so"},
        {system.directory.Write("libForeign.so", foreign), "libForeign.so"},
    };
    // Behind that much there may be debug information only.
    for (const std::size_t size : {image.size() / 100, image.size() / 20})
    {
        const std::string name = "libPart" + std::to_string(size) + ".so";
        cases.emplace_back(system.directory.Write(name, image.substr(0, size)), name);
    }
    for (const char* process : {"MainProcess", "Left"})
    {
        for (const auto& [path, text] : cases)
        {
            ConfigureLibrary(process, path);
            StartedProcess main = system.Start();
            EXPECT_EQ(main.AwaitEnd(), 1) << path << "\n" << main.GetOutput();
            EXPECT_TRUE(main.HasOutput("Library 'Broken' couldn't loaded in process " + std::string(process) + "."))
                << main.GetOutput();
            EXPECT_TRUE(main.HasOutput(text)) << path << "\n" << main.GetOutput();
            EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
            EXPECT_EQ(system.FindLeftovers(), "") << path;
        }
    }
}

TEST_F(SurroundingsTest, ALibraryThatCrashesInItsInitialiserTakesItsProcessAndThenTheStart)
{
    AddSanitizerOptions("handle_segv=0");
    system.WriteSettings("<ProcessSettings singleProcess='false' watchdogIdleTime='1h'/>");
    ConfigureLibrary("Left", TestSystem::GetBuiltFile("lib/libCrashingInitialiser.so"));
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Library 'Broken' couldn't loaded in process Left.")) << main.GetOutput();
    const std::string record = system.TakeCrashRecord();
    EXPECT_NE(record.find(": failed set-up\n"), std::string::npos) << record;
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(SurroundingsTest, ALibraryThatCrashesInTheMainProcessLeavesNothingThatHindersTheNextStart)
{
    AddSanitizerOptions("handle_segv=0");
    const std::string whole = system.directory.Read("Default.kiro.config");
    std::string broken = whole;
    broken.insert(broken.find("<Library "), "<Library name='Broken' binaryPath='" +
                                                TestSystem::GetBuiltFile("lib/libCrashingInitialiser.so") + "'/>");
    broken.insert(broken.find("<Component "),
                  "<Component name='C' type='Recorder' library='Broken' process='MainProcess'/>");
    system.directory.Write("Default.kiro.config", broken);
    StartedProcess crashed = system.Start();
    EXPECT_EQ(crashed.AwaitEnd(), -SIGSEGV) << crashed.GetOutput();
    EXPECT_TRUE(crashed.HasOutput("Library 'Recording' in process 'Left' loaded.")) << crashed.GetOutput();
    const std::string record = system.TakeCrashRecord();
#ifdef VELA_SANITIZED
    EXPECT_EQ(record, "no record");
#else
    EXPECT_NE(record.find("\nprocess: MainProcess\n"), std::string::npos) << record;
    EXPECT_NE(record.find("\nsignal: SIGSEGV "), std::string::npos) << record;
#endif
    EXPECT_NE(system.FindLeftovers(), "") << "it had no time to take anything away";
    system.directory.Write("Default.kiro.config", whole);
    StartedProcess next = system.Start();
    EndInOrder(next);
    EXPECT_EQ(system.FindLeftovers(), "") << next.GetOutput();
}

TEST_F(SurroundingsTest, DocumentsCutOffAnywhereEndTheStartWithTheirNames)
{
    const std::pair<const char*, int> documents[] = {{"Default.kiro.settings", 1}, {"Default.kiro.config", 1}};
    for (const auto& [name, exitCode] : documents)
    {
        const std::string text = system.directory.Read(name);
        const std::size_t end = text.find_last_not_of('\n');
        for (std::size_t size = 0; size < end; size += 1 + end / 8)
        {
            system.directory.Write(name, text.substr(0, size));
            StartedProcess main = system.Start();
            EXPECT_EQ(main.AwaitEnd(), exitCode) << main.GetOutput();
            EXPECT_TRUE(main.HasOutput(name)) << size << "\n" << main.GetOutput();
            EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
            EXPECT_EQ(system.FindLeftovers(), "");
        }
        system.directory.Write(name, text);
    }
}

TEST_F(SurroundingsTest, TwoSystemsKnowNothingOfEachOther)
{
    const TestSystem other;
    other.directory.Write("Default.kiro.config", system.directory.Read("Default.kiro.config"));
    StartedProcess first = system.Start();
    first.AwaitLine(isUp);
    StartedProcess second = other.Start();
    second.AwaitLine(isUp);
    second.Signal(SIGKILL);
    EXPECT_EQ(second.AwaitEnd(), -SIGKILL);
    StartedProcess third = other.Start();
    third.AwaitLine(isUp);
    first.Signal(SIGTERM);
    EXPECT_EQ(first.AwaitEnd(), 0) << first.GetOutput();
    EXPECT_EQ(first.GetOutput().find("Error"), std::string::npos) << first.GetOutput();
    third.Signal(SIGTERM);
    EXPECT_EQ(third.AwaitEnd(), 0) << third.GetOutput();
    EXPECT_EQ(system.FindLeftovers() + other.FindLeftovers(), "");
}

TEST_F(SurroundingsTest, AWallClockThatJumpsDisturbsNobody)
{
    AddSanitizerOptions("verify_asan_link_order=0");
    system.environment["LD_PRELOAD"] = TestSystem::GetBuiltFile("lib/libJumpingClock.so");
    system.WriteSettings("<ProcessSettings singleProcess='false' slowStepTime='5min' startWaitTime='1min' "
                         "stopWaitTime='1min' watchdogIdleTime='1ms'/>");
    WriteScript("InLeft Start sleep 20\n");
    StartedProcess main = system.Start();
    EndInOrder(main);
    EXPECT_FALSE(main.HasOutput("Warning")) << main.GetOutput();
    EXPECT_FALSE(main.HasOutput("Error")) << main.GetOutput();
    std::set<std::string> years;
    std::istringstream lines(main.GetOutput());
    for (std::string line; std::getline(lines, line);)
    {
        years.insert(line.substr(0, line.find('-')));
    }
    EXPECT_GT(years.size(), 1U) << "the clock did not jump: " << main.GetOutput();
}

TEST_F(SurroundingsTest, ABusyMachineRaisesNoFalseAlarm)
{
    system.WriteSettings("<ProcessSettings singleProcess='false' startWaitTime='1min' watchdogIdleTime='1ms'/>");
    const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
    std::atomic<bool> isOver{false};
    {
        std::vector<std::jthread> hogs;
        for (unsigned count = 0; count < 2 * processors; ++count)
        {
            hogs.emplace_back(
                [&]
                {
                    while (!isOver)
                    {
                    }
                });
        }
        StartedProcess main = StartBehind("renice -n $(($(nice) + 10)) -p $$ >/dev/null;");
        EndInOrder(main);
        isOver = true;
        EXPECT_FALSE(main.HasOutput("Warning")) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("Error")) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("Fatal")) << main.GetOutput();
    }
}

} // namespace
} // namespace Vela::Testing
