#include "HostFixture.hpp"

#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Kiro/Internal/TestApplicationBase.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <string_view>
#include <thread>

namespace Vela::System::Kiro::Internal
{
namespace
{

/// A console host without basic components.
class ConsoleHost : public TestApplicationBase
{
public:
    explicit ConsoleHost(bool isChild)
        : TestApplicationBase("Console", isChild, true)
    {
    }

    using ApplicationBase::IsShutdownRequested;
    using ApplicationBase::RequestProcessShutdown;
    using ApplicationBase::RequestShutdown;

    std::function<void()> onSetup;

protected:
    void SetupInternal() override
    {
        onSetup();
    }
};

/// Standard input as a pipe, for the time of a test.
class ConsoleTest : public HostTest
{
protected:
    ConsoleTest()
        : savedInput(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3))
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        keyboard.Reset(ends[1]);
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
    }

    ~ConsoleTest() override
    {
        dup2(savedInput.Get(), STDIN_FILENO);
    }

    void Type(std::string_view keys)
    {
        ASSERT_EQ(write(keyboard.Get(), keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    int Start(ConsoleHost& host) const
    {
        Arguments arguments({WriteSettings()});
        return host.Main(arguments.GetCount(), arguments.Get(), Commons::Diagnostics::LogLevel::None);
    }

    Commons::UniqueFd savedInput;
    Commons::UniqueFd keyboard;
};

TEST_F(ConsoleTest, EndsAtTheKeyXOnly)
{
    ConsoleHost host(false);
    // A shutdown of the system signals the event, which a console host does not look at.
    host.onSetup = [&]
    {
        Type("abc\nxyz");
        host.RequestShutdown();
    };
    EXPECT_EQ(Start(host), 0);
    std::array<char, 8> rest{};
    EXPECT_EQ(read(STDIN_FILENO, rest.data(), rest.size()), 2);
    EXPECT_EQ(std::string_view(rest.data()), "yz");
    EXPECT_TRUE(host.Dispose());
    EXPECT_NE(ReadLog("Console").find("Commands: X) Exit"), std::string::npos);
}

TEST_F(ConsoleTest, AtTheEndOfItsInputItEndsOnRequest)
{
    for (const bool isInputOpen : {true, false})
    {
        ConsoleHost host(true);
        std::thread requester;
        host.onSetup = [&]
        {
            if (!isInputOpen)
            {
                keyboard.Reset();
            }
            requester = std::thread([&] { host.RequestProcessShutdown(); });
        };
        EXPECT_EQ(Start(host), 0);
        requester.join();
        EXPECT_TRUE(host.Dispose());
    }
}

TEST_F(ConsoleTest, KnowsItsRoleAndItsKeyInBothCases)
{
    for (const auto& [key, ends] : {std::pair('X', true), std::pair('x', true), std::pair('8', false)})
    {
        ConsoleHost host(false);
        EXPECT_EQ(host.GetProcessKind(), ProcessKind::Main);
        host.ProcessConsoleCommand(key);
        EXPECT_EQ(host.IsShutdownRequested(), ends) << key;
    }
    EXPECT_EQ(ConsoleHost(true).GetProcessKind(), ProcessKind::Child);
    EXPECT_THROW(MainApplicationBase("Both", true, true, false), InvalidOperationException);
}

class LastWords : public MainApplicationBase
{
public:
    LastWords()
        : MainApplicationBase("LastWords", true, false, false)
    {
    }

    using MainApplicationBase::SetupExceptionHandler;
};

TEST(ExceptionHandlerDeathTest, SaysWhatNobodyCaughtAndAborts)
{
    const auto die = [](void (*function)())
    {
        // Without a log the message goes to standard output; the test reads the other one.
        dup2(STDERR_FILENO, STDOUT_FILENO);
        LastWords().SetupExceptionHandler();
        std::thread(function).join();
    };
    EXPECT_EXIT(die([] { throw InvalidOperationException("lost"); }), testing::KilledBySignal(SIGABRT),
                "Terminate application after unexpected exception:\r\nInvalidOperationException: lost");
    EXPECT_EXIT(die([] { std::terminate(); }), testing::KilledBySignal(SIGABRT),
                "Terminate application after unknown exception");
}

} // namespace
} // namespace Vela::System::Kiro::Internal
