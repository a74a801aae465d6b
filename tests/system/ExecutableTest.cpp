// One process: what the executable says and how it ends.

#include "SystemFixture.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>

namespace Vela::Testing
{
namespace
{

class ExecutableTest : public SystemTest
{
};

TEST_F(ExecutableTest, AnswersVersionAndHelp)
{
    StartedProcess version = system.Start({"--version"});
    EXPECT_EQ(version.AwaitEnd(), 0);
    EXPECT_EQ(version.GetOutput(), "Version VELA-Platform: 2024.0.8 LTS (24.0.8.148)\n");

    StartedProcess help = system.Start({"--help"});
    EXPECT_EQ(help.AwaitEnd(), 0);
    EXPECT_TRUE(help.HasOutput("--child arg")) << help.GetOutput();
    EXPECT_LT(help.GetOutput().find("--main arg"), help.GetOutput().find("--child arg"));
}

TEST_F(ExecutableTest, AnswersAWrongCommandLineWithOneLineAndTwo)
{
    StartedProcess process = system.Start({"--no-such-option"});
    EXPECT_EQ(process.AwaitEnd(), 2);
    EXPECT_EQ(process.CountOutput("\n"), 1) << process.GetOutput();
    EXPECT_TRUE(process.HasOutput("no-such-option"));
}

TEST_F(ExecutableTest, EndsWithOneWhenItCannotBeSetUp)
{
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--main=true", "--child=true"}, "Only one program option of the options 'main,child' is allowed."},
        {{"--settings=No.settings"}, "No.settings"},
        {{"--config=No.config"}, "No.config"},
        {{"--loglevel=Loud"}, "occurs: Loud"},
    };
    for (const auto& [arguments, message] : cases)
    {
        StartedProcess process = system.Start(arguments);
        EXPECT_EQ(process.AwaitEnd(), 1) << process.GetOutput();
        EXPECT_TRUE(process.HasOutput("Fatal error occurs in application 'MainProcess':")) << process.GetOutput();
        EXPECT_TRUE(process.HasOutput(message)) << process.GetOutput();
        EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
        EXPECT_EQ(system.FindLeftovers(), "");
    }
}

TEST_F(ExecutableTest, AnEmptySystemRunsUntilItIsToldToEnd)
{
    for (const int signal : {SIGTERM, SIGINT})
    {
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        main.SignalGroup(signal);
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_TRUE(main.HasOutput("Application 'MainProcess' terminates.")) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("Error")) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("Fatal")) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("WARN")) << main.GetOutput();
        EXPECT_EQ(system.FindLeftovers(), "");
    }
}

TEST_F(ExecutableTest, RefusesASecondMainProcessOfTheSameSystem)
{
    StartedProcess first = system.Start();
    first.AwaitLine(isUp);
    StartedProcess second = system.Start();
    EXPECT_EQ(second.AwaitEnd(), 1);
    EXPECT_TRUE(second.HasOutput(system.GetRuntimeDirectory())) << second.GetOutput();
    EXPECT_TRUE(second.HasOutput(std::to_string(first.GetId()))) << second.GetOutput();
    EXPECT_FALSE(std::filesystem::exists(system.GetRuntimeDirectory() + "/crashes"))
        << "nothing of the first has failed";

    first.Signal(SIGTERM);
    EXPECT_EQ(first.AwaitEnd(), 0) << first.GetOutput();
}

TEST_F(ExecutableTest, TakesOverWhatAKilledSystemLeft)
{
    {
        StartedProcess killed = system.Start();
        killed.AwaitLine(isUp);
        killed.Signal(SIGKILL);
        EXPECT_EQ(killed.AwaitEnd(), -SIGKILL);
    }
    EXPECT_NE(system.FindLeftovers(), "");
    StartedProcess next = system.Start();
    next.AwaitLine(isUp);
    next.Signal(SIGTERM);
    EXPECT_EQ(next.AwaitEnd(), 0) << next.GetOutput();
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(ExecutableTest, AChildStartedByHandEndsOnItsOwn)
{
    // Its presence makes the child, whatever the value.
    StartedProcess child = system.Start({"--child=false", "--name=Lonely"});
    child.AwaitLine("Application 'Lonely' was setup successfully.");
    child.Signal(SIGTERM);
    EXPECT_EQ(child.AwaitEnd(), 0) << child.GetOutput();
    EXPECT_TRUE(child.HasOutput("this process ends on its own")) << child.GetOutput();
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(ExecutableTest, AChildWhoseParentIsGoneAlreadyEnds)
{
    // The process with the number 1 is not the parent of the child, as if the parent had died at once.
    system.environment["VELA_PARENT_PID"] = "1";
    StartedProcess child = system.Start({"--child=true", "--name=Orphan"});
    EXPECT_EQ(child.AwaitEnd(), 1);
    EXPECT_TRUE(child.HasOutput("The process 1 that started this child process has ended.")) << child.GetOutput();
}

TEST_F(ExecutableTest, ADebugBreakWaitsForAKey)
{
    // What a child process left to the programs that it starts says nothing to a main process.
    system.environment["VELA_PARENT_PID"] = "1";
    std::array<int, 2> keyboard{};
    ASSERT_EQ(pipe2(keyboard.data(), O_CLOEXEC), 0);
    StartedProcess main = system.Start({"--debugBreak=true"}, keyboard[0]);
    main.AwaitLine("Debug Break: press any key to continue");
    EXPECT_FALSE(main.HasOutput("VelaVersion"));
    ASSERT_EQ(write(keyboard[1], "\n", 1), 1);
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0);
    close(keyboard[0]);
    close(keyboard[1]);
}

TEST_F(ExecutableTest, ASignalEndsADebugBreakAndThenTheSystemInOrder)
{
    StartedProcess main = system.Start({"--debugBreak=true"});
    main.AwaitLine("Debug Break: press any key to continue");
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Application 'MainProcess' terminates."));
}

} // namespace
} // namespace Vela::Testing
