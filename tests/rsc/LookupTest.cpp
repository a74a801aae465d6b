#include "RscFixture.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>
#include <Vela/System/Rsc/ServiceUsage.hpp>

#include <ThrownMessage.hpp>
#include <gmock/gmock.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <future>
#include <tuple>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::GetThrownMessage;
using namespace std::chrono_literals;

namespace
{

/// Far longer than anything takes.
constexpr auto patience = 60s;

class Lookup : public RscFixture
{
protected:
    static std::shared_ptr<ITestService> TryGetService(const ServiceProvider& provider,
                                                       std::chrono::milliseconds timeout = patience,
                                                       std::span<const int> wakeDescriptors = {})
    {
        return ServiceManager::TryGetService(TestServiceProxyFactory(), provider, timeout, wakeDescriptors);
    }

    static bool Answers(const std::shared_ptr<ITestService>& service)
    {
        return service != nullptr && service->Add(1, 2) == 3;
    }
};

} // namespace

TEST_F(Lookup, SaysWhatItCouldNotFind)
{
    EXPECT_EQ(GetThrownMessage<Exception>([] { GetService("Nobody"); }),
              "AppDomain Singleton instance of type 'Vela::System::Rsc::RscManager' was not created yet!");

    RscManagerOptions options;
    options.connectTimeout = 20ms;
    Open(false, options);
    EXPECT_EQ(GetThrownMessage<ArgumentException>([] { ServiceManager::GetService(TestServiceProxyFactory()); }),
              "Service does not specify a service provider");
    EXPECT_EQ(GetThrownMessage<InvalidOperationException>([] { GetService("Nobody"); }),
              "Could not retrieve service 'Vela.Testing.ITestService' from service provider 'Nobody'.");
    EXPECT_EQ(GetThrownMessage<InvalidOperationException>([] { GetService(ServiceProvider::MainProcess()); }),
              "Could not retrieve service 'Vela.Testing.ITestService' from service provider 'main process'.");
    EXPECT_EQ(GetThrownMessage<InvalidOperationException>([] { GetService(ownName); }),
              "Could not retrieve service 'Vela.Testing.ITestService' from service provider 'Tester'.");
    EXPECT_EQ(TryGetService(ServiceProvider::Process("Nobody"), 0ms), nullptr);

    StartPeer("Empty", {"unpublished"});
    EXPECT_EQ(TryGetService(ServiceProvider::Process("Empty"), 0ms), nullptr);
    const auto getReason = [](const String& processName)
    {
        try
        {
            GetService(processName);
            return String("found");
        }
        catch (const InvalidOperationException& exception)
        {
            return exception.GetInnerText();
        }
    };
    EXPECT_EQ(getReason("Empty"), "the process does not publish it");
    EXPECT_EQ(getReason("Nobody"), "it is not there");
}

TEST_F(Lookup, FindsServicesOfTheOwnProcess)
{
    Open(true);
    PublishOwn();
    ServiceManager::PublishComponentService("Pump", nullptr, &ownFactory);
    EXPECT_TRUE(Answers(GetService(ownName)));
    EXPECT_TRUE(Answers(GetService(ServiceProvider::MainProcess())));
    EXPECT_TRUE(Answers(GetService(ServiceProvider::Component("Pump"))));
    EXPECT_TRUE(Answers(ServiceManager::GetService(TestServiceProxyFactory(ServiceProvider::MainProcess()))));
    EXPECT_THROW(PublishOwn(), InvalidOperationException) << "published twice";
}

TEST_F(Lookup, TellsWhoPublishesAndWhoUsesServices)
{
    EXPECT_TRUE(ServiceUsage::GetPublished().empty());
    EXPECT_TRUE(ServiceUsage::GetUsed().empty());
    Open();
    PublishOwn();
    StartPeer("Other");
    const String pump = "Pump";
    const String library = "Pumps";
    {
        const Commons::Diagnostics::Breadcrumb step("PublishServices", "component", pump);
        ServiceManager::PublishService({}, "Second", ownFactory);
        ServiceManager::PublishComponentService(pump, "Third", &ownFactory);
        GetService("Other");
        GetService("Other");
    }
    {
        const Commons::Diagnostics::Breadcrumb step("LoadLibrary", "library", library);
        GetService(ServiceProvider::Component(pump, "Third"));
    }
    EXPECT_EQ(TryGetService(ServiceProvider::Process("Nobody"), 0ms), nullptr);

    const char* const interface = OperationTable<ITestService>::interfaceName;
    std::vector<std::tuple<String, String, String, String>> published;
    for (const PublishedService& service : ServiceUsage::GetPublished())
    {
        published.emplace_back(service.provider, service.serviceName, service.interfaceName, service.publisher);
    }
    EXPECT_THAT(published, testing::ElementsAre(std::tuple("", interface, interface, ""),
                                                std::tuple("", "Second", interface, pump),
                                                std::tuple(pump, "Third", interface, pump)));
    const auto listUses = []
    {
        std::vector<std::tuple<String, String, String, String>> uses;
        for (const UsedService& use : ServiceUsage::GetUsed())
        {
            uses.emplace_back(use.user, use.process, use.provider, use.serviceName);
        }
        return uses;
    };
    EXPECT_THAT(listUses(),
                testing::ElementsAre(std::tuple("", ownName, pump, "Third"), std::tuple(pump, "Other", "", interface)));

    ServiceManager::UnpublishService({}, "Second");
    EXPECT_EQ(ServiceUsage::GetPublished().size(), 2U);
    for (int i = 0; i < 2000; ++i)
    {
        const String user = fmt::format("User{}", i);
        const Commons::Diagnostics::Breadcrumb step("Start", "component", user);
        GetService(ownName);
    }
    EXPECT_EQ(ServiceUsage::GetUsed().size(), 1024U) << "memory is bounded";
}

TEST_F(Lookup, WaitsForAProcessThatIsStarting)
{
    Open();
    // The second time with what was kept of the first.
    for (const String name : {"Late", "Later"})
    {
        const String component = name + "Pump";
        auto found =
            std::async(std::launch::async, [&] { return Answers(TryGetService(ServiceProvider::Process(name))); });
        auto foundComponent = std::async(std::launch::async,
                                         [&] { return Answers(TryGetService(ServiceProvider::Component(component))); });
        Peer& peer = StartPeer(name, {"unpublished", "component=" + component});
        peer.Tell("publish");
        EXPECT_TRUE(found.get());
        EXPECT_TRUE(foundComponent.get());
    }
}

TEST_F(Lookup, EndsItsWaitWhenItIsWoken)
{
    Open();
    StartPeer("Empty", {"unpublished"});
    const Commons::UniqueFd event(::eventfd(0, EFD_CLOEXEC));
    const std::array wakes{event.Get()};
    auto absent = std::async(std::launch::async,
                             [&] { return TryGetService(ServiceProvider::Process("Nobody"), patience, wakes); });
    auto unpublished = std::async(std::launch::async,
                                  [&] { return TryGetService(ServiceProvider::Process("Empty"), patience, wakes); });
    const std::uint64_t one = 1;
    ASSERT_EQ(::write(event.Get(), &one, sizeof(one)), static_cast<ssize_t>(sizeof(one)));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(absent.get(), nullptr);
    EXPECT_EQ(unpublished.get(), nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start, patience / 2);
}

TEST_F(Lookup, WaitsNoLongerThanItMayBehindAQueueThatIsFull)
{
    // A process that was stopped, and that as many wait for as can.
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (directory / "Stopped.socket").copy(static_cast<char*>(address.sun_path), sizeof(address.sun_path) - 1);
    const auto* name = reinterpret_cast<const sockaddr*>(&address);
    const Commons::UniqueFd stopped(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(stopped.Get(), name, sizeof(address)), 0);
    ASSERT_EQ(listen(stopped.Get(), 0), 0);
    std::vector<Commons::UniqueFd> waiting;
    do
    {
        waiting.emplace_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    } while (connect(waiting.back().Get(), name, sizeof(address)) == 0);
    ASSERT_EQ(errno, EAGAIN);

    Open(true);
    EXPECT_THAT(ListFiles(), testing::Contains("Stopped.socket")) << "it is taken for a living process";
    EXPECT_EQ(TryGetService(ServiceProvider::Process("Stopped"), 50ms), nullptr);
}

TEST_F(Lookup, FindsAComponentWhereverItLives)
{
    Open();
    Peer& first = StartPeer("First", {"component=Tank/1"});
    const auto service = GetService(ServiceProvider::Component("Tank/1"));
    EXPECT_TRUE(Answers(service));
    EXPECT_EQ(dynamic_cast<TestServiceProxy&>(*service).GetProcessName(), "First");

    first.Tell("unpublish", "unpublished");
    EXPECT_EQ(TryGetService(ServiceProvider::Component("Tank/1"), 0ms), nullptr);
    Peer& second = StartPeer("Second", {"component=Tank/1"});
    EXPECT_TRUE(Answers(GetService(ServiceProvider::Component("Tank/1"))));
    second.Kill();
    // The link that the killed process left leads nowhere and is replaced.
    ServiceManager::PublishComponentService("Tank/1", nullptr, &ownFactory);
    EXPECT_TRUE(Answers(GetService(ServiceProvider::Component("Tank/1"))));
}

TEST_F(Lookup, TellsNamedServicesOfAComponentApart)
{
    Open();
    TestServiceImpl other("other");
    RscServiceFactory<ITestService> otherFactory(other);
    ServiceManager::PublishComponentService("Pump", "left", &ownFactory);
    ServiceManager::PublishComponentService("Pump", "right", &otherFactory);
    GetService(ServiceProvider::Component("Pump", "right"))->Nothing();
    EXPECT_EQ(ownService.calls, 0);
    EXPECT_EQ(other.calls, 1);
    EXPECT_THROW(GetService(ServiceProvider::Component("Pump")), InvalidOperationException);
    EXPECT_TRUE(ServiceManager::UnpublishComponentServices("Pump"));
    EXPECT_EQ(TryGetService(ServiceProvider::Component("Pump", "left"), 0ms), nullptr);
    EXPECT_EQ(ListFiles(), std::vector<std::string>{"Tester.socket"});
}

TEST_F(Lookup, TakesNamesOfAnyKindAndLength)
{
    const String longName(300, 'n');
    const std::vector<String> names{"with/slash", "with blank", "..", "main-process", longName + "1", longName + "2"};
    Open();
    for (const String& name : names)
    {
        StartPeer(name);
    }
    for (const String& name : names)
    {
        const auto service = GetService(name);
        ASSERT_TRUE(Answers(service)) << name;
        EXPECT_EQ(dynamic_cast<TestServiceProxy&>(*service).GetProcessName(), name);
    }
}

TEST_F(Lookup, WorksInADirectoryWhosePathIsTooLongForASocket)
{
    const String deep = directory / (String(100, 'a') + "/" + String(100, 'b'));
    Commons::Environment::SetVariable(Commons::Environment::runtimeDirectoryName, deep);
    Open(true);
    Peer peer(deep, {"Peer"});
    EXPECT_TRUE(Answers(TryGetService(ServiceProvider::Process("Peer"))));
    peer.End();
}

TEST_F(Lookup, NeverReachesASuccessorThroughAnOldProxy)
{
    Open();
    Peer& first = StartPeer("Peer");
    const auto service = GetService("Peer");
    EXPECT_TRUE(Answers(service));
    first.Kill();
    StartPeer("Peer");
    EXPECT_THROW(service->Nothing(), RscException);
    EXPECT_NE(GetThrownMessage<RscException>([&] { service->Nothing(); }).find("another one has its name now"),
              String::npos);
    EXPECT_TRUE(Answers(GetService("Peer")));
}

TEST_F(Lookup, NeedsNoEndpointOfItsOwn)
{
    StartPeer("Peer", {"main", "component=Pump"});
    const auto files = ListFiles();
    RscManager::CreateClientInstance("Tool");
    EXPECT_TRUE(Answers(GetService("Peer")));
    EXPECT_TRUE(Answers(GetService(ServiceProvider::MainProcess())));
    EXPECT_TRUE(Answers(GetService(ServiceProvider::Component("Pump"))));
    EXPECT_THROW(PublishOwn(), InvalidOperationException);
    EXPECT_EQ(ListFiles(), files);
    EXPECT_TRUE(RscManager::DisposeInstance());

    Commons::Environment::SetVariable(Commons::Environment::runtimeDirectoryName, directory / "nowhere");
    EXPECT_THROW(RscManager::CreateClientInstance("Tool"), Exception);
    EXPECT_EQ(ListFiles(), files);
}

} // namespace Vela::System::Rsc::Testing
