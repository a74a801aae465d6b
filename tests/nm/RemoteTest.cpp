#include <Vela/AppDomain.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/NmPayload/Security/SecurityNotificationPayload.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <Inbox.hpp>
#include <StartedProcess.hpp>
#include <TemporaryDirectory.hpp>
#include <TestPayload.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <future>
#include <string>

namespace Vela::Testing
{

using namespace System::Nm;
using System::NmPayload::Security::SecurityNotificationPayload;
using System::Rsc::RscManager;

namespace
{

/// A peer process and the pipe to its standard input.
class Peer
{
public:
    Peer(const TemporaryDirectory& runtimeDirectory, const std::string& name, const std::string& pattern,
         const std::string& kind = "process")
        : input(MakePipe())
        , process(VELA_NM_PEER, {name, pattern, kind}, {{"VELA_PATH_RUNTIME_DIR", runtimeDirectory.GetPath()}}, {},
                  input[0])
    {
        ::close(input[0]);
    }

    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    ~Peer()
    {
        EndInput();
    }

    void Say(const std::string& text) const
    {
        const std::string line = text + "\n";
        ASSERT_EQ(::write(input[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
    }

    void EndInput()
    {
        if (input[1] >= 0)
        {
            ::close(input[1]);
            input[1] = -1;
        }
    }

    StartedProcess& operator*()
    {
        return process;
    }

    StartedProcess* operator->()
    {
        return &process;
    }

private:
    static std::array<int, 2> MakePipe()
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        {
            throw std::runtime_error("pipe2");
        }
        return ends;
    }

    std::array<int, 2> input;
    StartedProcess process;
};

/// The main process of a system, with remoting and the broker.
class NotificationsBetweenProcesses : public ::testing::Test
{
protected:
    NotificationsBetweenProcesses()
    {
        ::setenv("VELA_PATH_RUNTIME_DIR", directory.GetPath().c_str(), 1);
        AppDomain::CreateInstance();
        RscManager::CreateInstance("Main", 0, System::Rsc::RscManagerOptions{}, true);
        NotificationManagerSetup::Setup("Main", true);
    }

    ~NotificationsBetweenProcesses() override
    {
        NotificationManagerSetup::Dispose();
        RscManager::DisposeInstance();
        ::unsetenv("VELA_PATH_RUNTIME_DIR");
    }

    static void Send(int number, const String& text = {})
    {
        NotificationRegistration<NumberPayload>("Main.Number", "Test", Severity::Information)
            .Send(NumberPayload(number, text));
    }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(NotificationsBetweenProcesses, TravelBothWays)
{
    Peer peer(directory, "Child", "Main.*");
    peer->AwaitLine("subscribed");
    Peer tool(directory, "Tool", "*", "tool");
    tool->AwaitLine("subscribed");
    Send(1);
    Send(2, "two");
    NotificationManagerSetup::StartDispatching();
    EXPECT_NE(peer->AwaitLine("number=1").find("Information Main.Number [Test, Main]: number=1, text="),
              std::string::npos);
    peer->AwaitLine("number=2, text=two");

    std::promise<Notification> answer;
    NotificationSubscription subscription("Peer.Said",
                                          [&answer](const Notification& received) { answer.set_value(received); });
    peer.Say("hello");
    const Notification received = answer.get_future().get();
    EXPECT_EQ(received.process, "Child");
    EXPECT_EQ(received.severity, Severity::Warning);
    EXPECT_EQ(received.GetPayload<SecurityNotificationPayload>().GetMessage(), "hello");
    tool->AwaitLine("number=2");
    tool->AwaitLine("Warning Peer.Said [Child, Child]: message=hello");

    peer.EndInput();
    EXPECT_EQ(peer->AwaitEnd(), 0) << peer->GetOutput();
    tool.EndInput();
    EXPECT_EQ(tool->AwaitEnd(), 0) << tool->GetOutput();
}

TEST_F(NotificationsBetweenProcesses, ArriveAlthoughTheSenderEndsAtOnce)
{
    NotificationManagerSetup::StartDispatching();
    Peer tool(directory, "Tool", "Peer.*", "tool");
    tool->AwaitLine("subscribed");
    Peer peer(directory, "Child", "Nothing");
    for (int i = 0; i < 300; ++i)
    {
        peer.Say("line " + std::to_string(i));
    }
    peer.EndInput();
    EXPECT_EQ(peer->AwaitEnd(), 0) << peer->GetOutput();
    for (int i = 0; i < 300; ++i)
    {
        tool->AwaitLine("message=line " + std::to_string(i) + "\n");
    }
}

TEST_F(NotificationsBetweenProcesses, SurviveKilledPeersAndANewBroker)
{
    NotificationManagerSetup::StartDispatching();
    Peer killed(directory, "Killed", "*");
    killed->AwaitLine("subscribed");
    Peer peer(directory, "Child", "*");
    peer->AwaitLine("subscribed");
    killed->Signal(SIGKILL);
    EXPECT_EQ(killed->AwaitEnd(), -SIGKILL);
    Send(1);
    peer->AwaitLine("number=1");

    NotificationManagerSetup::Dispose();
    NotificationManagerSetup::Setup("Main", true);
    NotificationManagerSetup::StartDispatching();
    peer->AwaitLine("missed some");
    Send(2);
    peer->AwaitLine("number=2");
    peer.Say("still here");
    peer->AwaitLine("message=still here");
}

} // namespace Vela::Testing
