// What a crash and a failed set-up leave behind.

#include "SystemFixture.hpp"

#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>

#include <filesystem>

namespace Vela::Testing
{
namespace
{

using System::Commons::Diagnostics::CrashRecords;

class CrashTest : public SystemTest
{
protected:
    CrashTest()
    {
        // The component is optional: the watchdog decides how the system ends, not the failed call.
        system.WriteSettings(
            "<ProcessSettings singleProcess='false' watchdogIdleTime='20ms' watchdogDelayTime='1ms'/>");
        Configure({"MainProcess", "Left", "Right"}, {{"First", "Left"}, {"Faulty", "Right"}});
        for (const char* variable : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
        {
            const char* present = std::getenv(variable);
            system.environment[variable] = std::string(present != nullptr ? present : "") + ":handle_segv=0";
        }
    }

    /// The fields of the only record.
    [[nodiscard]] std::map<String, String> ReadRecord() const
    {
        const CrashRecords records(system.GetRuntimeDirectory());
        const auto names = records.List();
        if (names.size() != 1)
        {
            throw std::runtime_error(std::to_string(names.size()) + " records");
        }
        const auto fields = records.Read(names.front());
        return {fields.begin(), fields.end()};
    }
};

#ifndef VELA_SANITIZED
// A sanitizer makes reports of its own.
TEST_F(CrashTest, ACrashedChildTellsItsComponentAndStepAndTheMainProcessTheRest)
{
    WriteScript("Faulty LoadConfig crash\n");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), -SIGABRT) << main.GetOutput();
    auto record = ReadRecord();
    EXPECT_EQ(record["reason"], "crash");
    EXPECT_EQ(record["process"], "Right");
    EXPECT_EQ(record["signal"], "SIGSEGV (11)");
    EXPECT_EQ(record["component"], "Faulty");
    EXPECT_EQ(record["step"], "LoadConfig");
    EXPECT_TRUE(record["thread"].starts_with("rsc-server (")) << record["thread"];
    EXPECT_NE(record["stack"].find("/libRecording.so+0x"), std::string::npos) << record["stack"];
    EXPECT_NE(record["stack"].find("/libVela.System.Kiro.so"), std::string::npos) << record["stack"];
    EXPECT_NE(record["log"].find("Faulty takes step LoadConfig"), std::string::npos) << record["log"];
    EXPECT_EQ(record["failure"], "process gone");
    EXPECT_NE(record["processes"].find("Right[" + record["pid"] + "]: signal 11 (Segmentation fault)"),
              std::string::npos)
        << record["processes"];
    EXPECT_NE(record["processes"].find("]: running"), std::string::npos) << record["processes"];
    EXPECT_NE(record["log of MainProcess"].find("Process 'Right' has exited unexpectedly."), std::string::npos);
    // The same on the console, and how the child ended behind what the watchdog says.
    EXPECT_TRUE(main.HasOutput("\nstep: LoadConfig\nstack:\n  #00 0x")) << main.GetOutput();
    EXPECT_LT(main.GetOutput().find("All other living processes terminated immediately."),
              main.GetOutput().find("Process 'Right' ended: signal 11 (Segmentation fault)."));
    EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: crash\n"));
}

TEST_F(CrashTest, AnExceptionThatNobodyCatchesIsACrashOfTheMainProcessItself)
{
    Configure({"MainProcess"}, {{"Faulty", "MainProcess"}});
    WriteScript("Faulty Destroy throw standard the pump is gone\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), -SIGABRT) << main.GetOutput();
    auto record = ReadRecord();
    EXPECT_EQ(record["signal"], "SIGABRT (6)");
    EXPECT_EQ(record["component"], "Faulty");
    EXPECT_EQ(record["step"], "DestroyComponent");
#ifndef __arm__
    // There is no way back from where the C library aborts.
    EXPECT_NE(record["stack"].find("/libRecording.so+0x"), std::string::npos) << record["stack"];
#endif
    EXPECT_NE(record["log"].find("unexpected exception:  the pump is gone"), std::string::npos) << record["log"];
}
#endif

TEST_F(CrashTest, AChildThatIsKilledLeavesTheRecordOfTheMainProcess)
{
    WriteScript("Faulty LoadConfig kill\n");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), -SIGABRT) << main.GetOutput();
    auto record = ReadRecord();
    EXPECT_EQ(record["reason"], "process gone");
    EXPECT_EQ(record["process"], "MainProcess");
    EXPECT_NE(record["processes"].find("]: signal 9 (Killed)"), std::string::npos) << record["processes"];
    EXPECT_FALSE(record.contains("stack")) << "the main process has not crashed, it has given up";
}

TEST_F(CrashTest, AFailedSetUpIsRecordedWithItsPhaseAndReason)
{
    Configure({"MainProcess", "Left"}, {{"Faulty", "Left", "RecordingController", "isRequired=\"true\""}});
    WriteScript("Faulty SetupConfig throw own out of paper\n");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    auto record = ReadRecord();
    EXPECT_EQ(record["reason"], "failed set-up");
    EXPECT_EQ(record["phase"], "Configuring the components");
    EXPECT_EQ(record["step"] + " of " + record["component"], "SetupComponentConfig of Faulty");
    EXPECT_NE(record["error"].find("out of paper"), std::string::npos) << record["error"];
    EXPECT_NE(record["processes"].find("]: running"), std::string::npos) << record["processes"];
    EXPECT_NE(record["log"].find("Faulty takes step SetupConfig"), record["log"].find("out of paper"));
}

TEST_F(CrashTest, AProcessThatDiesOnTheWayDownLeavesOneRecordAndAnExitCode)
{
    Configure({"MainProcess", "Left"}, {{"Faulty", "Left", "RecordingController"}});
    WriteScript("Faulty Stop exit 7\n");
    // It is found out by the steps that fail; the watchdog would be another end.
    system.WriteSettings("<ProcessSettings singleProcess='false' watchdogIdleTime='1h'/>");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    auto record = ReadRecord();
    EXPECT_EQ(record["reason"], "not taken down in order");
    EXPECT_EQ(record["phase"], "Stopping the processes");
    EXPECT_NE(record["processes"].find("]: exit code 7"), std::string::npos) << record["processes"];
    EXPECT_TRUE(main.HasOutput("Process 'Left' ended: exit code 7."));
}

TEST_F(CrashTest, AChildThatCannotBeSetUpBeginsTheRecordThatTheMainProcessEnds)
{
    system.directory.Write("Broken.settings", "<KiroSettingsDocument>");
    system.WriteConfig(R"(<Processes><Process name="MainProcess"/>
        <Process name="Left" settingsPath="Broken.settings"/></Processes>
        <Libraries><Library name="L" binaryPath="libNone.so"/></Libraries>
        <Components><Component name="C" type="T" library="L" process="Left"/></Components>)");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    const CrashRecords records(system.GetRuntimeDirectory());
    ASSERT_EQ(records.List().size(), 1U);
    const auto fields = records.Read(records.List().front());
    EXPECT_EQ(fields.at(2), (std::pair<String, String>("process", "Left")));
    std::map<String, String> last(fields.rbegin(), fields.rend());
    EXPECT_EQ(last["failure"], "failed set-up");
    EXPECT_NE(last["processes"].find("Left[" + last["pid"] + "]: exit code 1"), std::string::npos);
}

} // namespace
} // namespace Vela::Testing
