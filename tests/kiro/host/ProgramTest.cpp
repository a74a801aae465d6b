#include "HostFixture.hpp"

#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Kiro/Internal/Program.hpp>
#include <Vela/System/Kiro/Internal/StartState.hpp>

#include <StartedProcess.hpp>
#include <TestSystem.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace Vela::System::Kiro::Internal
{
namespace
{

class ProgramTest : public HostTest
{
};

TEST_F(ProgramTest, LogsToStandardOutputAsLongAsThereIsNoLog)
{
    testing::internal::CaptureStdout();
    Program::Log("as it is {}");
    Program::Log("[{0}]", String("text"));
    Program::Log("[{0}]", InvalidOperationException("wrong"));
    Program::Log("[{0}]", std::runtime_error("standard"));
    Program::Log("[{1}]", String("text"));
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(text.starts_with("as it is {}[text][InvalidOperationException: wrong][standard][{1}]")) << text;

    Program::Log(static_cast<const char*>(nullptr));
    EXPECT_TRUE(std::cout.bad());
    std::cout.clear();
}

TEST_F(ProgramTest, LogsAsInformationWhenThereIsALog)
{
    PlainHost host(true);
    host.onSetup = []
    {
        Program::Log("braces {0} stay");
    };
    EXPECT_EQ(host.Start({WriteSettings()}), 0);
    EXPECT_TRUE(host.Dispose());
    const std::string log = ReadLog();
    EXPECT_NE(log.find("Info  Vela.System.Kiro.Internal.Program: braces {0} stay"), std::string::npos) << log;
}

TEST_F(ProgramTest, StartsItsExecutableAgainAsADaemonWithTheSameArguments)
{
    // This very program, told to run no test and to report to a FIFO whose name needs quotes.
    const std::string fifo = directory / "the report";
    ASSERT_EQ(mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR), 0);
    Arguments arguments({"--gtest_filter=None", "--gtest_output=json:" + fifo});
    testing::internal::CaptureStdout();
    Program::StartProcess(arguments.GetCount(), arguments.Get());
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("Starting Tarnex process, Executable Path = "), std::string::npos) << text;
    EXPECT_NE(text.find(", args = --gtest_filter=None "), std::string::npos) << text;
    EXPECT_NE(directory.Read("the report").find("\"tests\": 0"), std::string::npos);
}

TEST_F(ProgramTest, StartAgainRestoresEverythingAsItWasAtTheStart)
{
    signal(SIGINT, SIG_IGN);
    Testing::StartedProcess helper(Testing::TestSystem::GetBuiltFile("tests/start-state-helper"),
                                   {directory / "marker", "two words", ""}, {{"THERE_AT_THE_START", "1"}},
                                   directory.GetPath().string());
    signal(SIGINT, SIG_DFL);
    EXPECT_EQ(helper.AwaitEnd(), 0) << helper.GetOutput();
    const std::string output = helper.GetOutput();
    const std::string first = output.substr(0, output.find('\n') + 1);
    EXPECT_EQ(output, first + first);
    EXPECT_NE(first.find("'two words' '' 0 0 0 default ignored default"), std::string::npos) << first;
}

TEST(StartStateDeathTest, FillsThePlaceOfAClosedStream)
{
    const auto start = []
    {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
        Arguments arguments({});
        const StartState state(arguments.GetCount(), arguments.Get());
        const bool areFilled = std::filesystem::read_symlink("/proc/self/fd/0") == "/dev/null" &&
                               std::filesystem::read_symlink("/proc/self/fd/1") == "/dev/null" &&
                               std::filesystem::read_symlink("/proc/self/fd/2") != "/dev/null";
        std::_Exit(areFilled ? 0 : 1);
    };
    EXPECT_EXIT(start(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Vela::System::Kiro::Internal
