#include "RawClient.hpp"
#include "RscFixture.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>

#include <CapturedLog.hpp>
#include <ThreadRest.hpp>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <deque>
#include <string_view>
#include <thread>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::CapturedLog;
using namespace std::chrono_literals;

namespace
{

constexpr std::uint16_t addNumber = 2;
constexpr std::uint16_t echoNumber = 3;
constexpr std::uint16_t manyNumber = 11;

/// This process's endpoint under clients that are slow, or too many.
class Flood : public RscFixture
{
protected:
    void OpenAndPublish(int port = 0)
    {
        RscManager::CreateInstance(ownName, port, options, false);
        PublishOwn();
        StartPeer("Honest");
        // By way of the other process, which comes back as a client of this one.
        ASSERT_EQ(GetService("Honest")->Nest(ownName, 2), 2);
    }

    [[nodiscard]] RawClient Connect() const
    {
        return RawClient(directory / "Tester.socket");
    }

    /// The honest client is served, whatever the others do.
    static void ExpectService()
    {
        EXPECT_EQ(GetService("Honest")->Nest(ownName, 2), 2);
    }

    /// Takes that many connections over TCP and says nothing.
    static std::deque<RawClient> ConnectSilently(std::uint16_t port, std::size_t count)
    {
        std::deque<RawClient> clients;
        while (clients.size() < count)
        {
            // The challenge tells that it has its connection.
            EXPECT_TRUE(clients.emplace_back(port).Receive());
        }
        return clients;
    }

    RscManagerOptions options;
};

} // namespace

TEST_F(Flood, ASlowClientLosesItsOwnConnectionAndTheLogSaysWhatItOwed)
{
    const CapturedLog log;
    options.frameTimeout = 50ms;
    OpenAndPublish();
    const auto expectEnd = [&log](const char* name, const char* awaited)
    {
        const String line = fmt::format("Closed the connection of process '{}' (pid {}, uid {}): timed out: {} took "
                                        "longer than 50 ms",
                                        name, ::getpid(), ::geteuid(), awaited);
        Await([&] { return log.Contains(line); });
        ExpectService();
    };

    RawClient silent = Connect();
    EXPECT_TRUE(silent.IsClosed());
    expectEnd("", "its introduction");

    RawClient dripping = Connect();
    ASSERT_TRUE(dripping.Introduce());
    const auto call = dripping.MakeCall(echoNumber, MakePayload(String(1000, 'x')));
    auto bytes = RawClient::MakeHeader(RawClient::call, 1, static_cast<std::uint32_t>(call.size()));
    bytes.insert(bytes.end(), call.begin(), call.end());
    for (const std::byte byte : bytes)
    {
        dripping.Send(std::vector{byte});
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_TRUE(dripping.IsClosed());
    expectEnd("Raw", "a request that it had begun");

    RawClient greedy = Connect();
    ASSERT_TRUE(greedy.Introduce());
    greedy.SendFrame(RawClient::call, 1, greedy.MakeCall(manyNumber, MakePayload(std::uint32_t{50'000})));
    while (greedy.ReceiveSome(1024))
    {
        std::this_thread::sleep_for(1ms);
    }
    expectEnd("Raw", "an answer that it did not take");
}

TEST_F(Flood, RequestsWithoutEndBlockNobodyElse)
{
    const CapturedLog log;
    options.frameTimeout = 50ms;
    OpenAndPublish();
    RawClient client = Connect();
    ASSERT_TRUE(client.Introduce());
    const auto call = client.MakeCall(echoNumber, MakePayload(String(500'000, 'x')));
    for (int i = 0; i < 50; ++i)
    {
        client.SendFrame(RawClient::call, 1, call);
    }
    ExpectService();
    EXPECT_TRUE(client.IsClosed());
    EXPECT_TRUE(log.Contains("an answer that it did not take took longer than 50 ms"));
}

TEST_F(Flood, OneProcessCannotTakeAllConnectionsNorFillTheLog)
{
    const CapturedLog log;
    options.maxConnectionsPerProcess = 4;
    OpenAndPublish();
    std::deque<RawClient> clients;
    for (int i = 0; i < 8; ++i)
    {
        ASSERT_TRUE(clients.emplace_back(Connect()).Introduce());
    }
    for (int i = 0; i < 2000; ++i)
    {
        RawClient client = Connect();
        ASSERT_EQ(client.ReceiveRefusal(), "too many connections are open");
    }
    ExpectService();
    EXPECT_EQ(log.Count(fmt::format("Refused a connection of process {}: 8 of its connections are open, which is the "
                                    "limit.",
                                    ::getpid())),
              20U);
    clients.front().SendFrame(RawClient::call, 7, clients.front().MakeCall(addNumber, MakePayload(1, 2)));
    EXPECT_TRUE(clients.front().Receive()) << "those that it has are served on";

    clients.pop_back();
    Await([this] { return Connect().Introduce(); });
    RscManager::DisposeInstance();
    EXPECT_TRUE(log.Contains(fmt::format("more warnings about connections of process {} were left out.", ::getpid())));
}

TEST_F(Flood, TcpClientsLeaveHalfOfTheConnectionsToTheSystem)
{
    const CapturedLog log;
    options.maxConnections = 6;
    options.frameTimeout = 1h;
    options.connectTimeout = 100ms;
    const std::uint16_t port = FindFreePort();
    OpenAndPublish(port);
    const auto silent = ConnectSilently(port, 3);
    EXPECT_EQ(RawClient(port).ReceiveRefusal(), "too many connections are open");
    try
    {
        GetService(ServiceProvider::LocalPort(port));
        ADD_FAILURE() << "served";
    }
    catch (const InvalidOperationException& exception)
    {
        EXPECT_EQ(exception.GetInnerText(), "refused: too many connections are open");
    }
    ExpectService();
}

#ifndef VELA_SANITIZED
// A sanitizer itself needs descriptors.
TEST_F(Flood, AProcessWithoutDescriptorsWarnsOnceAndLetsClientsInWhenItHasSomeAgain)
{
    Open();
    Peer& server = StartPeer("Server");
    const auto service = GetService("Server");
    const pid_t process = server.GetProcess().GetId();
    rlimit ordinary{};
    ASSERT_EQ(::prlimit(process, RLIMIT_NOFILE, nullptr, &ordinary), 0);
    // None is left behind its standard streams and another one. With fewer than it waits for it could not even wait.
    const rlimit exhausted{4, ordinary.rlim_max};
    ASSERT_EQ(::prlimit(process, RLIMIT_NOFILE, &exhausted, nullptr), 0);
    RawClient waiting(directory / "Server.socket");
    server.Await("Cannot accept connections: Too many open files");
    EXPECT_EQ(service->Add(1, 2), 3) << "those that it has are served on";
    // It goes to sleep between its attempts.
    const auto attempts = Vela::Testing::CountSleeps(process, "rsc-accept");
    Await([&] { return Vela::Testing::CountSleeps(process, "rsc-accept") >= attempts + 5; });

    ASSERT_EQ(::prlimit(process, RLIMIT_NOFILE, &ordinary, nullptr), 0);
    EXPECT_TRUE(waiting.Introduce());
    EXPECT_TRUE(RawClient(directory / "Server.socket").Introduce());
    server.End();
    EXPECT_EQ(server.GetProcess().CountOutput("Cannot accept connections"), 1) << server.GetProcess().GetOutput();
}
#endif

TEST_F(Flood, AnnouncedSizesTakeNoMemory)
{
    OpenAndPublish();
    [[maybe_unused]] const auto getPeak = []
    {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    [[maybe_unused]] const auto before = getPeak();
    std::deque<RawClient> clients;
    for (int i = 0; i < 30; ++i)
    {
        ASSERT_TRUE(clients.emplace_back(Connect()).Introduce());
        clients.back().Send(RawClient::MakeHeader(RawClient::call, 1, 1024 * 1024));
    }
    // An array of four thousand million elements, in a text of as many bytes, in nine bytes.
    clients.front() = Connect();
    ASSERT_TRUE(clients.front().Introduce());
    for (const std::uint8_t type : {std::uint8_t{19}, std::uint8_t{33}})
    {
        clients.front().SendFrame(
            RawClient::call, 7,
            clients.front().MakeCall(echoNumber, MakeRawPayload(type, std::uint8_t{1}, std::uint32_t{0xfffffff0})));
        ASSERT_TRUE(clients.front().Receive());
    }
    ExpectService();
#ifndef VELA_SANITIZED
    // Sanitizers take memory of their own for every thread.
    EXPECT_LT(getPeak() - before, 16 * 1024) << "kilobytes";
#endif
}

TEST(RscCaller, IsNamedInOneShortLineOfPlainText)
{
    RscCaller caller;
    caller.processName = "a\r\n2026-01-01 forged\x1b[2J" + String(100'000, 'x');
    const String text = caller.ToString();
    EXPECT_EQ(text.find_first_of("\r\n\x1b"), String::npos);
    EXPECT_LT(text.size(), 300U);
}

} // namespace Vela::System::Rsc::Testing
