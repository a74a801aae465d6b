#include "RscFixture.hpp"

#include <Vela/Exceptions.hpp>

#include <ThrownMessage.hpp>

#include <chrono>
#include <future>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::GetThrownMessage;
using namespace std::chrono_literals;

namespace
{

class ConnectionToPeer : public RscFixture
{
};

String Message(const String& operation, const String& why)
{
    return fmt::format("Call of operation '{}' of service 'Vela.Testing.ITestService' in process 'Peer' failed: {}",
                       operation, why);
}

} // namespace

TEST_F(ConnectionToPeer, GivesUpACallAfterItsDeadlineAndNeverOneWithout)
{
    RscManagerOptions options;
    options.callTimeout = 100ms;
    Open(false, options);
    Peer& peer = StartPeer("Peer");
    const auto service = GetService("Peer");
    EXPECT_EQ(GetThrownMessage<RscException>([&] { service->Wait(60'000); }),
              Message("Wait", "no answer within 100 ms"));
    service->Linger(300);
    EXPECT_EQ(service->Add(1, 2), 3) << "a late answer must not be taken for another call's";
    peer.Await("waiting");
    service->Release();
}

TEST_F(ConnectionToPeer, ServesCallsThatAskForItOnOneThread)
{
    Open();
    PublishOwn();
    StartPeer("Peer");
    const auto service = GetService("Peer");
    const auto thread = service->GetThread();
    auto other = std::async(std::launch::async,
                            [&service]
                            {
                                for (int i = 0; i < 100; ++i)
                                {
                                    service->Nest(ownName, 1);
                                }
                            });
    for (int i = 0; i < 100; ++i)
    {
        ASSERT_EQ(service->GetThread(), thread);
    }
    other.get();
}

TEST_F(ConnectionToPeer, NestsCallsUpToALimit)
{
    RscManagerOptions options;
    options.maxConnectionsPerProcess = 8;
    Open(false, options);
    PublishOwn();
    StartPeer("Peer");
    const auto service = GetService("Peer");
    EXPECT_EQ(service->Nest(ownName, 10), 10);
    EXPECT_NE(GetThrownMessage<RscException>([&] { service->Nest(ownName, 100); })
                  .find("8 calls to the process are in progress, which is the limit"),
              String::npos);
    EXPECT_EQ(service->Nest(ownName, 10), 10);
}

TEST_F(ConnectionToPeer, BoundsRequestsAndResponses)
{
    Open();
    StartPeer("Peer");
    const auto service = GetService("Peer");
    EXPECT_EQ(GetThrownMessage<RscException>([&] { service->Echo(String(2U << 20U, 'x')); }),
              Message("Echo", "The message exceeds 1048592 bytes."));
    EXPECT_EQ(service->Add(1, 2), 3);
    EXPECT_EQ(service->Many(50'000).size(), 50'000U) << "an answer may be larger than a request";

    StartPeer("Small", {"settings=" + directory.Write("small.settings", R"(<RscSettingsDocument>
        <Limits maxResponseSize="524288"/></RscSettingsDocument>)")});
    const auto small = GetService("Small");
    EXPECT_NE(GetThrownMessage<RscException>([&] { small->Many(50'000); }).find("the answer is too large"),
              String::npos);
    EXPECT_EQ(small->Many(10).size(), 10U);
}

TEST_F(ConnectionToPeer, ReportsAProcessThatDiesDuringACall)
{
    Open();
    Peer& peer = StartPeer("Peer");
    const auto service = GetService("Peer");
    auto waiting = std::async(std::launch::async, [&service] { service->Wait(60'000); });
    peer.Await("waiting");
    peer.Kill();
    EXPECT_EQ(GetThrownMessage<RscException>([&] { waiting.get(); }), Message("Wait", "the connection was closed"));
    EXPECT_EQ(GetThrownMessage<RscException>([&] { service->Linger(0); }),
              Message("Linger", "the process does not listen any more"));
}

TEST_F(ConnectionToPeer, EndsWithAllClients)
{
    Open();
    Peer& peer = StartPeer("Peer");
    auto& manager = AppDomainSingleton<RscManager>::GetInstance();

    const auto first = GetService("Peer");
    auto ending = std::async(std::launch::async, [&first] { return first->Wait(60'000); });
    peer.Await("waiting");
    manager.CloseAllClients(false);
    EXPECT_EQ(GetThrownMessage<RscException>([&] { first->Nothing(); }),
              Message("Nothing", "the connections to the process were closed"));
    const auto second = GetService("Peer");
    second->Release();
    EXPECT_TRUE(ending.get()) << "a call in progress ends as usual";
    EXPECT_EQ(second->Add(1, 2), 3);
}

TEST_F(ConnectionToPeer, EndsACallInProgressWhenClientsAreAborted)
{
    Open();
    Peer& peer = StartPeer("Peer");
    const auto service = GetService("Peer");
    auto waiting = std::async(std::launch::async, [&service] { return service->Wait(60'000); });
    peer.Await("waiting");
    AppDomainSingleton<RscManager>::GetInstance().CloseAllClients(true);
    EXPECT_THROW(waiting.get(), RscException);
    GetService("Peer")->Release();
}

TEST_F(ConnectionToPeer, FailsHarmlesslyAfterTheManager)
{
    Open();
    PublishOwn();
    StartPeer("Peer");
    const auto service = GetService("Peer");
    const auto own = GetService(ownName);
    EXPECT_TRUE(RscManager::DisposeInstance());
    EXPECT_THROW(service->Nothing(), RscException);
    EXPECT_THROW(own->Nothing(), RscException);
    EXPECT_TRUE(RscManager::DisposeInstance());
    EXPECT_TRUE(ServiceManager::UnpublishService({}, ownFactory.GetInterfaceName()));
}

} // namespace Vela::System::Rsc::Testing
