#include "RawClient.hpp"
#include "RscFixture.hpp"

#include <Vela/Exceptions.hpp>

#include <CapturedLog.hpp>
#include <ThrownMessage.hpp>

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <thread>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::CapturedLog;
using Vela::Testing::GetThrownMessage;
using namespace std::chrono_literals;

namespace
{

/// This process's endpoint, seen from clients that know no manners.
class EndpointUnderAttack : public RscFixture
{
protected:
    void OpenAndPublish(const RscManagerOptions& options = {})
    {
        Open(false, options);
        PublishOwn();
    }

    [[nodiscard]] RawClient Connect() const
    {
        return RawClient(directory / "Tester.socket");
    }

    /// A client whose call of the published service has begun, and ends when the service is released.
    [[nodiscard]] RawClient BeginLongCall(std::promise<void>& begun) const
    {
        RawClient client = Connect();
        EXPECT_TRUE(client.Introduce());
        client.SendFrame(RawClient::call, 7, client.MakeCall(9, MakePayload(60'000)));
        begun.get_future().get();
        return client;
    }

    void ExpectFailure(RawClient& client, RscErrorCode code)
    {
        const auto answer = client.Receive();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->kind, RawClient::response);
        EXPECT_EQ(answer->requestNumber, 7U);
        RemotingReader reader(answer->payload);
        EXPECT_TRUE(reader.ReadConfirmation());
        EXPECT_EQ(reader.ReadRaw<std::uint32_t>(), static_cast<std::uint32_t>(code));
        reader.ReadRaw<std::uint16_t>();
        reader.ReadStringInternal(1000, utf8Encoding, true);
        lastMessage = reader.ReadStringInternal(1000, utf8Encoding, true);
    }

    String lastMessage;
};

} // namespace

TEST_F(EndpointUnderAttack, ClosesOnlyTheConnectionOnAMalformedFrameAndSaysWhy)
{
    const CapturedLog log;
    OpenAndPublish();
    RawClient bystander = Connect();
    ASSERT_TRUE(bystander.Introduce());

    struct Attack
    {
        std::function<void(RawClient&)> send;
        String reason;
    };
    const auto introduced = [](const std::function<void(RawClient&)>& next)
    {
        return [next](RawClient& client)
        {
            ASSERT_TRUE(client.Introduce());
            next(client);
        };
    };
    const std::vector<Attack> attacks{
        {[](RawClient& client) { client.Send("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n"); },
         "process '' (pid {}, uid {}): malformed frame: no header"},
        {[](RawClient& client)
         { client.Send(MakeRawPayload(0x43535256U, std::uint8_t{9}, std::uint8_t{1}, std::uint16_t{0}, 0ULL)); },
         "malformed frame: protocol version 9 instead of 1"},
        {[](RawClient& client) { client.SendFrame(RawClient::call, 1, {}); }, "malformed frame: no introduction"},
        {[](RawClient& client) { client.SendFrame(RawClient::hello, 1, MakePayload(1)); }, "malformed frame"},
        {introduced([](RawClient& client) { client.SendFrame(99, 1, {}); }), "malformed frame: kind 99"},
        {introduced([](RawClient& client) { client.SendFrame(RawClient::response, 1, {}); }), "kind 5 is no request"},
        {introduced([](RawClient& client) { client.Send(RawClient::MakeHeader(RawClient::call, 1, 0xffffffffU)); }),
         "process 'Raw' (pid {}, uid {}): malformed frame: 4294967295 bytes where at most 1048576 are allowed"},
        {introduced([](RawClient& client) { client.SendFrame(RawClient::call, 1, MakeRawPayload(std::uint16_t{0})); }),
         "malformed frame"},
        {introduced([](RawClient& client) { client.SendFrame(RawClient::open, 1, MakePayload(String("x"))); }),
         "malformed frame"},
        {introduced(
             [](RawClient& client)
             {
                 client.Send(RawClient::MakeHeader(RawClient::call, 1, 100));
                 client.EndSending();
             }),
         "the connection was closed inside a frame"},
    };
    for (const Attack& attack : attacks)
    {
        RawClient client = Connect();
        const std::size_t before = log.GetText().size();
        attack.send(client);
        EXPECT_TRUE(client.IsClosed());
        const String reason = fmt::format(fmt::runtime(attack.reason), ::getpid(), ::geteuid());
        EXPECT_NE(log.GetText().find(reason, before), String::npos) << reason << "\n" << log.GetText().substr(before);
    }

    bystander.SendFrame(RawClient::call, 8, bystander.MakeCall(2, MakePayload(1, 2)));
    const auto answer = bystander.Receive();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->payload, (std::vector<std::byte>{std::byte{0}, std::byte{8}, std::byte{3}, std::byte{0},
                                                       std::byte{0}, std::byte{0}}));
}

TEST_F(EndpointUnderAttack, AbortsCallsThatItDoesNotUnderstandWithoutMakingThem)
{
    OpenAndPublish();
    RawClient client = Connect();
    ASSERT_TRUE(client.Introduce());
    for (const std::uint16_t operation : std::array<std::uint16_t, 3>{0, 1000, 65535})
    {
        client.SendFrame(RawClient::call, 7, client.MakeCall(operation));
        ExpectFailure(client, RscErrorCode::UnknownOperation);
        EXPECT_EQ(lastMessage, "");
    }
    static_assert(static_cast<std::uint32_t>(RscErrorCode::UnknownOperation) == 1073741827U);

    client.SendFrame(RawClient::call, 7, client.MakeCall(7, MakePayload(1)));
    ExpectFailure(client, RscErrorCode::MalformedRequest);
    EXPECT_NE(lastMessage, "");
    client.SendFrame(RawClient::call, 7, client.MakeCall(1, MakePayload(1)));
    ExpectFailure(client, RscErrorCode::MalformedRequest);
    client.SendFrame(RawClient::call, 7, MakeRawPayload(std::uint16_t{500}, std::uint16_t{1}, std::uint16_t{1}));
    ExpectFailure(client, RscErrorCode::UnknownService);
    EXPECT_EQ(ownService.calls, 0);
}

TEST_F(EndpointUnderAttack, ServesRequestsThatArriveInPiecesOrTogether)
{
    OpenAndPublish();
    RawClient client = Connect();
    ASSERT_TRUE(client.Introduce());
    const auto call = client.MakeCall(3, MakePayload(String(10'000, 'x')));
    auto bytes = RawClient::MakeHeader(RawClient::call, 1, static_cast<std::uint32_t>(call.size()));
    bytes.insert(bytes.end(), call.begin(), call.end());
    std::vector<std::byte> both = bytes;
    both.insert(both.end(), bytes.begin(), bytes.end());

    for (const std::byte byte : bytes)
    {
        client.Send(std::vector{byte});
    }
    client.Send(both);
    for (int i = 0; i < 3; ++i)
    {
        const auto answer = client.Receive();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->payload.size(), 1U + 6U + 10'000U);
    }
}

TEST_F(EndpointUnderAttack, RefusesMoreConnectionsThanItMayHave)
{
    RscManagerOptions options;
    options.maxConnections = 2;
    OpenAndPublish(options);
    RawClient first = Connect();
    auto second = std::make_unique<RawClient>(Connect());
    ASSERT_TRUE(first.Introduce());
    ASSERT_TRUE(second->Introduce());

    RawClient third = Connect();
    EXPECT_EQ(third.ReceiveRefusal(), "too many connections are open");
    EXPECT_TRUE(third.IsClosed());

    second.reset();
    Await([this] { return Connect().Introduce(); });
}

TEST_F(EndpointUnderAttack, AnswersACallInProgressBeforeItCloses)
{
    std::promise<void> begun;
    TestServiceImpl service("Tester", [&begun] { begun.set_value(); });
    RscServiceFactory<ITestService> factory(service);
    Open();
    ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
    RawClient idle = Connect();
    ASSERT_TRUE(idle.Introduce());
    RawClient client = BeginLongCall(begun);

    auto closing = std::async(std::launch::async, [] { return RscManager::DisposeInstance(); });
    EXPECT_TRUE(idle.IsClosed());
    service.Release();
    const auto answer = client.Receive();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->payload, (std::vector<std::byte>{std::byte{0}, std::byte{2}, std::byte{1}}));
    EXPECT_TRUE(client.IsClosed());
    EXPECT_TRUE(closing.get());
}

TEST_F(EndpointUnderAttack, TellsWhenACallOutlivesIt)
{
    const auto begun = std::make_shared<std::promise<void>>();
    auto service = std::make_shared<TestServiceImpl>("Tester", [begun] { begun->set_value(); });
    RscServiceFactory<ITestService, TestServiceImpl> factory([weakService = std::weak_ptr(service)]
                                                             { return weakService.lock(); });
    RscManagerOptions options;
    options.closeTimeout = 50ms;
    const std::size_t threads = CountThreads();
    Open(false, options);
    ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
    RawClient client = BeginLongCall(*begun);

    EXPECT_FALSE(ServiceManager::UnpublishService({}, factory.GetInterfaceName()));
    EXPECT_FALSE(RscManager::DisposeInstance());
    EXPECT_TRUE(client.IsClosed());
    EXPECT_TRUE(ListFiles().empty());

    // The call keeps its service until it ends.
    const std::weak_ptr<TestServiceImpl> remaining = service;
    service->Release();
    service.reset();
    Await([&remaining] { return remaining.expired(); });
    Await([threads] { return CountThreads() == threads; });
}

TEST_F(EndpointUnderAttack, KnowsTheServicesOfCallsThatOutliveIt)
{
    const auto begun = std::make_shared<std::promise<void>>();
    auto service = std::make_shared<TestServiceImpl>("Tester", [begun] { begun->set_value(); });
    RscServiceFactory<ITestService, TestServiceImpl> factory([&service] { return service; });
    RscManagerOptions options;
    options.closeTimeout = 50ms;
    Open(false, options);
    ServiceManager::PublishComponentService("Pump", nullptr, &factory);
    ServiceManager::PublishComponentService("Valve", nullptr, &ownFactory);
    const auto proxy = GetService(ServiceProvider::Component("Pump"));
    auto call = std::async(std::launch::async, [&proxy] { return proxy->Wait(60'000); });
    begun->get_future().get();

    EXPECT_FALSE(RscManager::DisposeInstance());
    EXPECT_TRUE(ServiceManager::UnpublishComponentServices("Valve"));
    EXPECT_FALSE(ServiceManager::UnpublishComponentServices("Pump")) << "the call is still inside";
    const std::weak_ptr<TestServiceImpl> remaining = service;
    service->Release();
    service.reset();
    EXPECT_TRUE(call.get());
    EXPECT_TRUE(remaining.expired());
    EXPECT_TRUE(ServiceManager::UnpublishComponentServices("Pump"));
}

TEST_F(EndpointUnderAttack, LetsACallEndWhileItIsTakenDown)
{
    std::promise<void> begun;
    // The call's thread goes on by itself, and may be the last one to hold the service.
    auto service = std::make_shared<TestServiceImpl>("Tester", [&begun] { begun.set_value(); });
    RscServiceFactory<ITestService, TestServiceImpl> factory([service] { return service; });
    RscManagerOptions options;
    options.closeTimeout = 50ms;
    const std::size_t threads = CountThreads();
    Open(false, options);
    ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
    RawClient client = BeginLongCall(begun);

    auto closing = std::async(std::launch::async, [] { return RscManager::DisposeInstance(); });
    // By then it has given the call up, but may not be gone itself.
    Await([] { return AppDomainSingleton<RscManager>::TryGetInstance() == nullptr; });
    service->Release();
    EXPECT_FALSE(closing.get());
    Await([threads] { return CountThreads() == threads; });
}

TEST_F(EndpointUnderAttack, WithdrawsAServiceWhenItsCallsHaveEnded)
{
    std::promise<void> begun;
    TestServiceImpl service("Tester", [&begun] { begun.set_value(); });
    bool isDestroyed = false;
    RscServiceFactory<ITestService> factory(
        [&] { return std::shared_ptr<ITestService>(&service, [&isDestroyed](ITestService*) { isDestroyed = true; }); });
    Open();
    ServiceManager::PublishComponentService("Pump", nullptr, &factory);
    const auto proxy = GetService(ServiceProvider::Component("Pump"));
    auto call = std::async(std::launch::async, [&proxy] { return proxy->Wait(60'000); });
    begun.get_future().get();

    auto withdrawing =
        std::async(std::launch::async, [] { return ServiceManager::UnpublishComponentServices("Pump"); });
    // From the withdrawal on new calls fail.
    Await(
        [&proxy]
        {
            try
            {
                proxy->Nothing();
                return false;
            }
            catch (const RscException&)
            {
                return true;
            }
        });
    EXPECT_FALSE(isDestroyed);
    service.Release();
    EXPECT_TRUE(withdrawing.get());
    EXPECT_TRUE(isDestroyed);
    EXPECT_TRUE(call.get());
}

TEST_F(EndpointUnderAttack, LeavesNothingBehind)
{
    Open(true);
    StartPeer("Peer");
    RscManager::DisposeInstance();
    const std::size_t descriptors = CountDescriptors();
    const std::size_t threads = CountThreads();

    RscManager::CreateInstance(ownName, FindFreePort(), RscManagerOptions(), true);
    PublishOwn();
    ServiceManager::PublishComponentService("Pump", nullptr, &ownFactory);
    auto service = GetService("Peer");
    EXPECT_EQ(service->Nest(ownName, 4), 4);
    RawClient client = Connect();
    ASSERT_TRUE(client.Introduce());
    EXPECT_EQ(ListFiles(), (std::vector<std::string>{"Peer.socket", "Pump.component", "Tester.socket", "main-process",
                                                     "system-lock", "system-secret"}));
    EXPECT_TRUE(RscManager::DisposeInstance());
    EXPECT_TRUE(client.IsClosed());
    client = RawClient(directory / "Peer.socket");
    EXPECT_EQ(CountDescriptors(), descriptors + 1);
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_EQ(ListFiles(), std::vector<std::string>{"Peer.socket"});
    peers.front()->End();
    EXPECT_TRUE(ListFiles().empty());
}

TEST_F(EndpointUnderAttack, LetsOnlyOneMainProcessIntoADirectory)
{
    Open(true);
    Peer other(directory.GetPath().string(), {"Other", "main"});
    other.Await(fmt::format("Another main process (pid {}) runs in runtime directory '{}'; each system needs a "
                            "directory of its own (VELA_PATH_RUNTIME_DIR).",
                            ::getpid(), directory.GetPath().string()));
    EXPECT_EQ(other.GetProcess().AwaitEnd(), 1);
    Peer namesake(directory.GetPath().string(), {ownName});
    namesake.Await(fmt::format("Another process of runtime directory '{}' has the name 'Tester' already.",
                               directory.GetPath().string()));
    EXPECT_EQ(namesake.GetProcess().AwaitEnd(), 1);
    PublishOwn();
    EXPECT_EQ(GetService(ServiceProvider::MainProcess())->Add(1, 2), 3);
}

TEST_F(EndpointUnderAttack, TakesOverWhatAKilledSystemLeft)
{
    Peer& killed = StartPeer("Main", {"main", "component=Pump", fmt::format("port={}", FindFreePort())});
    Peer& child = StartPeer("Child", {"component=Valve"});
    StartPeer("new-comer", {"component=Tank"});
    killed.Kill();
    child.Kill();
    EXPECT_EQ(ListFiles().size(), 9U);
    Open(true);
    EXPECT_EQ(ListFiles(), (std::vector<std::string>{"Tank.component", "Tester.socket", "main-process",
                                                     "new-comer.socket", "system-lock"}));
}

TEST_F(EndpointUnderAttack, SaysWhichNameCannotBeItsOwn)
{
    std::filesystem::create_directory(directory.GetPath() / "Tester.socket");
    std::filesystem::create_directory(directory.GetPath() / "Pump.component");
    const std::string place = fmt::format("in runtime directory '{}': Is a directory", directory.GetPath().string());
    EXPECT_EQ(GetThrownMessage<Exception>([this] { Open(); }), "Cannot make socket 'Tester.socket' " + place);
    std::filesystem::remove(directory.GetPath() / "Tester.socket");
    Open();
    EXPECT_EQ(GetThrownMessage<Exception>(
                  [this] { ServiceManager::PublishService("Pump", ownFactory.GetInterfaceName(), ownFactory); }),
              "Cannot make link 'Pump.component' " + place);
}

TEST_F(EndpointUnderAttack, RefusesADirectoryThatOthersCanWriteInto)
{
    std::filesystem::permissions(directory.GetPath(), std::filesystem::perms::others_write,
                                 std::filesystem::perm_options::add);
    EXPECT_NE(GetThrownMessage<InvalidOperationException>([this] { Open(); }).find("must belong to user"),
              String::npos);
}

} // namespace Vela::System::Rsc::Testing
