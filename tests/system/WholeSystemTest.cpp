// A main process with children and components, from its start to every kind of end.

#include "SystemFixture.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace Vela::Testing
{
namespace
{

class WholeSystemTest : public SystemTest
{
protected:
    WholeSystemTest()
    {
        Configure({"MainProcess", "Left", "Right"}, {{"InMain", "MainProcess", "Recorder:controller:order=30"},
                                                     {"InLeft", "Left", "Recorder:controller:order=10"},
                                                     {"InRight", "Right", "Recorder:controller:order=20"}});
    }

    /// The process id of a child, from the line that it writes itself.
    static pid_t AwaitChild(StartedProcess& main, const std::string& name)
    {
        return StartedProcess::GetProcessId(main.AwaitLine("Application '" + name + "' was setup successfully."));
    }

    static std::string ReadProcessFile(pid_t pid, const std::string& name)
    {
        std::ifstream stream("/proc/" + std::to_string(pid) + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
};

TEST_F(WholeSystemTest, GoesUpInStartOrderAndDownInReverse)
{
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();

    for (const char* step : {"Initialize", "LoadSettings", "PublishServices", "LoadConfig", "SetupConfig", "Start"})
    {
        EXPECT_EQ(GetOrder(step), "InLeft InRight InMain") << step;
    }
    for (const char* step : {"Stop", "ResetConfig", "Dispose", "Destroy"})
    {
        EXPECT_EQ(GetOrder(step), "InMain InRight InLeft") << step;
    }
    EXPECT_EQ(GetSteps("InLeft"), "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices "
                                  "LoadConfig SetupConfig Start Stop ResetConfig Dispose Destroy");
    EXPECT_FALSE(main.HasOutput("Error")) << main.GetOutput();
    EXPECT_FALSE(main.HasOutput("Warning")) << main.GetOutput();
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(WholeSystemTest, CtrlCEndsItInOrderFromTheMainProcess)
{
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.SignalGroup(SIGINT);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(GetOrder("Destroy"), "InMain InRight InLeft");
    EXPECT_EQ(main.CountOutput("requests the shutdown of the system"), 1) << main.GetOutput();
}

TEST_F(WholeSystemTest, ASignalToAChildEndsTheWholeSystemInOrder)
{
    StartedProcess main = system.Start();
    const pid_t child = AwaitChild(main, "Left");
    main.AwaitLine(isUp);
    kill(child, SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(GetOrder("Destroy"), "InMain InRight InLeft");
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(WholeSystemTest, ASignalInAnyPhaseEndsItInOrderOnceItIsUp)
{
    for (const char* step : {"Create", "Initialize", "LoadSettings", "SetupConfig", "Start"})
    {
        system.directory.Write("trace", "");
        const std::string fifo = system.directory / "gate";
        unlink(fifo.c_str());
        ASSERT_EQ(mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR), 0);
        WriteScript("InRight " + std::string(step) + " await " + fifo + "\n");

        StartedProcess main = system.Start();
        main.AwaitLine("InRight takes step " + std::string(step));
        main.Signal(SIGTERM);
        main.AwaitLine("requests the shutdown of the system");
        close(open(fifo.c_str(), O_WRONLY | O_CLOEXEC));
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_EQ(GetOrder("Stop"), "InMain InRight InLeft") << step;
        EXPECT_EQ(GetOrder("Destroy"), "InMain InRight InLeft") << step;
        EXPECT_EQ(system.FindLeftovers(), "") << step;
    }
}

TEST_F(WholeSystemTest, ASecondSignalEndsItAtOnce)
{
    // Its threads stay where they are, which ThreadSanitizer would report instead of the exit code.
    const char* options = std::getenv("TSAN_OPTIONS");
    system.environment["TSAN_OPTIONS"] = std::string(options != nullptr ? options : "") + ":report_thread_leaks=0";
    WriteScript("InLeft Stop hang\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    main.AwaitLine("InLeft takes step Stop");
    main.Signal(SIGTERM);
    // The children are tied to the life of the main process, so the output ends as well.
    EXPECT_EQ(main.AwaitEnd(), 128 + SIGTERM) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Second signal")) << main.GetOutput();
}

TEST_F(WholeSystemTest, AChildThatDiesTakesEverythingWithIt)
{
    StartedProcess main = system.Start();
    const pid_t child = AwaitChild(main, "Right");
    main.AwaitLine(isUp);
    kill(child, SIGKILL);
    EXPECT_EQ(main.AwaitEnd(), -SIGABRT) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Process 'Right' has exited unexpectedly.")) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("All other living processes terminated immediately.")) << main.GetOutput();
}

TEST_F(WholeSystemTest, ChildrenDieWithTheMainProcess)
{
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGKILL);
    EXPECT_EQ(main.AwaitEnd(), -SIGKILL);
}

TEST_F(WholeSystemTest, AChildThatWaitsForADebuggerEndsWithTheMainProcess)
{
    system.WriteConfig("<Processes><Process name='Left' debugBreak='true'/></Processes><Libraries><Library name='L' "
                       "binaryPath='libNone.so'/></Libraries><Components><Component name='C' type='T' library='L' "
                       "process='Left'/></Components>");
    StartedProcess main = system.Start();
    main.AwaitLine("Debug Break: press any key to continue");
    main.Signal(SIGKILL);
    // The output is at its end when the child has gone as well.
    EXPECT_EQ(main.AwaitEnd(), -SIGKILL);
    EXPECT_TRUE(main.HasOutput("that started this child process has ended.")) << main.GetOutput();
}

TEST_F(WholeSystemTest, AChildThatDiesAtItsStartEndsTheStart)
{
    Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}});
    system.directory.Write("Broken.settings", "<KiroSettingsDocument>");
    system.WriteConfig(R"(<Processes><Process name="MainProcess"/>
        <Process name="Left" settingsPath="Broken.settings"/></Processes>
        <Libraries><Library name="L" binaryPath="libNone.so"/></Libraries>
        <Components><Component name="C" type="T" library="L" process="Left"/></Components>)");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Process 'Left' has exited unexpectedly at startup.")) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Could not start process 'Left'.")) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Could not start all processes")) << main.GetOutput();
    EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(WholeSystemTest, ARequiredComponentThatFailsEndsTheStartAndAllIsTakenDown)
{
    Configure({"MainProcess", "Left"}, {{"Fine", "MainProcess", "Recorder:controller:order=1"},
                                        {"Faulty", "Left", "Recorder:controller:order=2", "isRequired=\"true\""}});
    WriteScript("Faulty SetupConfig throw own out of paper\n");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("out of paper")) << main.GetOutput();
    EXPECT_EQ(GetOrder("Start"), "");
    EXPECT_EQ(GetOrder("Destroy"), "Faulty Fine");
    EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(WholeSystemTest, AnOptionalComponentThatFailsIsLeftOut)
{
    Configure({"MainProcess", "Left"}, {{"Fine", "MainProcess", "Recorder:controller:order=2"},
                                        {"Faulty", "Left", "Recorder:controller:order=1"}});
    WriteScript("Faulty Start throw unknown\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_TRUE(GetSteps("Fine").ends_with("Start Stop ResetConfig Dispose Destroy")) << GetSteps("Fine");
}

TEST_F(WholeSystemTest, SingleProcessModeStartsNoChild)
{
    StartedProcess main = system.Start({"--singleProcess=true"});
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(GetOrder("Start"), "InLeft InRight InMain");
    EXPECT_EQ(main.CountOutput("was setup successfully"), 1);
}

TEST_F(WholeSystemTest, TheMainProcessPassesItsEnvironmentButNotItsProcessor)
{
    system.WriteSettings(R"(<ProcessSettings singleProcess="false" defaultProcessAffinityMask="0"/>
        <EnvironmentVariables><EnvironmentVariable name="VELA_PATH_SYSTEM_DIR" value="plant"/></EnvironmentVariables>)");
    system.directory.Write(
        "plant/System/Scm/Scm.settings",
        R"(<ScmSettingsDocument><Features><Feature name="Trace" enabled="true"/></Features></ScmSettingsDocument>)");
    system.directory.Write("Child.settings", "<KiroSettingsDocument/>");
    system.WriteConfig(R"(<Processes><Process name="MainProcess"/>
        <Process name="Left" settingsPath="Child.settings"/></Processes>
        <Libraries><Library name="Recording" binaryPath=")" +
                       TestSystem::GetBuiltFile("lib/libRecording.so") + R"("/></Libraries>
        <Components><Component name="C" type="Recorder" library="Recording" process="Left"/></Components>)");

    StartedProcess main = system.Start();
    const pid_t child = AwaitChild(main, "Left");
    main.AwaitLine(isUp);
    const std::string environment = ReadProcessFile(child, "environ");
    EXPECT_NE(environment.find("VELA_FEATURE:Trace=true"), std::string::npos);
    EXPECT_NE(environment.find("VELA_PARENT_PID=" + std::to_string(main.GetId())), std::string::npos);
    const auto getAffinity = [](pid_t pid)
    {
        const std::string status = ReadProcessFile(pid, "status");
        const std::size_t begin = status.find("Cpus_allowed_list:");
        return status.substr(begin, status.find('\n', begin) - begin);
    };
    EXPECT_EQ(getAffinity(child), getAffinity(getpid()));
    EXPECT_EQ(getAffinity(main.GetId()), "Cpus_allowed_list:\t0");
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

} // namespace
} // namespace Vela::Testing
