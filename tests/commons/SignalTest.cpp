#include "StartedProcess.hpp"
#include "TestSystem.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>

using Vela::Testing::StartedProcess;
using Vela::Testing::TestSystem;

namespace
{

/// A process that waits for signals, and is told through its standard input what its handler does.
struct SignalTest : testing::Test
{
    SignalTest()
        : process(TestSystem::GetBuiltFile("tests/test-commons-helper"), {"signals"}, {}, {}, MakePipe())
    {
        ::close(readEnd);
        process.AwaitLine("ready");
    }

    ~SignalTest() override
    {
        ::close(writeEnd);
    }

    int MakePipe()
    {
        int ends[2] = {-1, -1};
        if (::pipe2(ends, O_CLOEXEC) == 0)
        {
            readEnd = ends[0];
            writeEnd = ends[1];
        }
        return readEnd;
    }

    void InstallHandler(const std::string& mode)
    {
        const std::string line = mode + "\n";
        ASSERT_EQ(::write(writeEnd, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    }

    int readEnd = -1;
    int writeEnd = -1;
    StartedProcess process;
};

} // namespace

TEST_F(SignalTest, CallsTheHandlerAsOrdinaryCode)
{
    InstallHandler("return");
    process.AwaitLine("installed");
    process.Signal(SIGINT);
    process.AwaitLine("handled 2");
    EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
    EXPECT_TRUE(process.HasOutput("stopped"));
}

TEST_F(SignalTest, HandsOverASignalThatCameBeforeTheHandler)
{
    process.Signal(SIGTERM);
    InstallHandler("return");
    process.AwaitLine("handled 15");
    EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
}

TEST_F(SignalTest, EndsTheProcessAtTheSecondSignalWhileTheHandlerHangs)
{
    InstallHandler("hang");
    process.AwaitLine("installed");
    process.Signal(SIGTERM);
    process.AwaitLine("handled 15");
    process.Signal(SIGINT);
    EXPECT_EQ(process.AwaitEnd(), 130) << process.GetOutput();
    EXPECT_TRUE(process.HasOutput("Second signal (2): the process ends at once.")) << process.GetOutput();
}

TEST_F(SignalTest, LogsAnExceptionOutOfTheHandlerAndGoesOn)
{
    InstallHandler("throw");
    process.Signal(SIGTERM);
    EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
    EXPECT_TRUE(process.HasOutput("Handler of signal 15 failed: InvalidOperationException: out of order"))
        << process.GetOutput();
}

TEST_F(SignalTest, StopsWithoutASignal)
{
    InstallHandler("none");
    EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
    EXPECT_TRUE(process.HasOutput("stopped"));
}
