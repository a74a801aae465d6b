// A step that hangs shows where.

#include "Emulation.hpp"
#include "SystemFixture.hpp"
#include "ThreadRest.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vela::Testing
{
namespace
{

class HungStepTest : public SystemTest
{
protected:
    HungStepTest()
    {
        // No other step may count as slow: emulated, loading a library takes its time.
        system.WriteSettings(std::string("<ProcessSettings singleProcess='false' slowStepTime='") +
                             (IsEmulated() ? "2s" : "100ms") + "'/>");
        mkfifo(gate.c_str(), S_IRUSR | S_IWUSR);
    }

    const std::string gate = system.directory / "gate";
};

#ifndef __SANITIZE_THREAD__
// That sanitizer holds signals back until the thread makes certain calls.
TEST_F(HungStepTest, TheStacksOfTheHungProcessAreLoggedOnce)
{
    for (const char* process : {"Left", "MainProcess"})
    {
        Configure({"MainProcess", "Left"}, {{"Faulty", process}, {"InLeft", "Left"}});
        WriteScript("Faulty Stop await " + gate + "\n");
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        main.Signal(SIGTERM);
        main.AwaitLine("StopComponent of component 'Faulty' in process '" + std::string(process) +
                       "' has not returned");
        const std::string title = main.AwaitLine(", Stop of component 'Faulty':");
        EXPECT_NE(title.find(std::string(process) + "["), std::string::npos) << title;
        main.AwaitLine("libRecording.so");
        // The next warning comes when the stacks are through.
        main.AwaitLine("StopComponent of component 'Faulty'");
        main.AwaitLine("StopComponent of component 'Faulty'");
        EXPECT_EQ(main.CountOutput(", Stop of component 'Faulty':"), 1) << main.GetOutput();
        close(open(gate.c_str(), O_WRONLY | O_CLOEXEC));
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    }
}

#endif

TEST_F(HungStepTest, AProcessThatDoesNotAnswerIsNamed)
{
    Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}});
    system.directory.Write("Rsc.settings",
                           "<RscSettingsDocument><Timeouts call='500ms' connect='500ms'/></RscSettingsDocument>");
    StartedProcess main = system.Start();
    const std::string line = main.AwaitLine("Application 'Left' was setup successfully.");
    main.AwaitLine(isUp);
    const pid_t child = StartedProcess::GetProcessId(line);
    StopAllThreads(child);
    main.Signal(SIGTERM);
    main.AwaitLine("Process 'Left' does not tell where its threads are: ");
    kill(child, SIGCONT);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

} // namespace
} // namespace Vela::Testing
