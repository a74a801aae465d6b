#include "CapturedLog.hpp"
#include "FakeHost.hpp"
#include "FakeProcess.hpp"

#include <Settings/KiroSettings.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Sm/Services/Internal/SystemManagerServiceImpl.hpp>
#include <Sm/Services/SystemManagerServiceImpl.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>
#include <Vela/System/Kiro/Services/SystemManagerServiceProxy.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/NmPayload/Kiro/SystemManagerStatePayload.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <TemporaryDirectory.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

using namespace Vela;
using namespace Vela::Testing;
using namespace Vela::System;
using namespace Vela::System::Kiro::Internal;
using testing::ElementsAre;
using testing::IsEmpty;
using Vela::System::Commons::Environment;
using Vela::System::Kiro::Services::Internal::IProcessManagerService;

namespace
{

/// The notifications of the system manager, in short: "Startup", "State Running 1" with the error flag.
class Announcements
{
public:
    /// Waits until that many have come.
    std::vector<std::string> Await(std::size_t count)
    {
        std::unique_lock lock(mutex);
        condition.wait(lock, [&] { return texts.size() >= count; });
        return texts;
    }

private:
    void Add(const Nm::Notification& notification)
    {
        using Payload = NmPayload::Kiro::SystemManagerStatePayload;
        std::string text = notification.name.substr(notification.name.rfind('.') + 1);
        if (text == "StateChanged")
        {
            const auto payload = notification.GetPayload<Payload>();
            text = fmt::format("State {} {:d}", payload.GetState(), payload.HasError());
            EXPECT_FALSE(payload.GetFlag());
        }
        EXPECT_EQ(notification.sender, "System Manager");
        EXPECT_NE(notification.timeStamp, Commons::Chrono::DateTime());
        const std::lock_guard lock(mutex);
        texts.push_back(text);
        condition.notify_all();
    }

    std::mutex mutex;
    std::condition_variable condition;
    std::vector<std::string> texts;
    Nm::NotificationSubscription subscription{"Vela.System.Kiro.SystemManager.*",
                                              [this](const Nm::Notification& notification)
                                              {
                                                  Add(notification);
                                              }};
};

/// A system of one process: remoting, notifications and the system manager are real, the process manager is not.
class SystemManagerTest : public testing::Test
{
protected:
    using Factory = Rsc::RscServiceFactory<IProcessManagerService, IProcessManagerService>;

    SystemManagerTest()
    {
        Environment::Setup();
        AppDomain::CreateInstance().SetApplicationName("Main");
        Environment::SetVariable(Environment::runtimeDirectoryName, directory / "run");
        Rsc::RscManager::CreateInstance("Main", 0, Rsc::RscManagerOptions(), true);
        Nm::NotificationManagerSetup::Setup("Main", true);
        Rsc::ServiceManager::PublishService("", factory.GetInterfaceName(), factory);
        host.configPath = WriteConfig("<Component name='one' type='Pump' library='' process='Main' isRequired='true'/>"
                                      "<Component name='two' type='Pump' library=''/>"
                                      "<Component name='three' type='Valve' library='' startOrder='1'/>");
        Settings::KiroSettingsLoader::Load(directory.Write("test.settings", "<KiroSettingsDocument/>"), settings,
                                           false);
    }

    ~SystemManagerTest() override
    {
        Singleton<Sm::SystemManager>::DisposeInstance();
        Rsc::ServiceManager::UnpublishService("", factory.GetInterfaceName());
        Nm::NotificationManagerSetup::Dispose();
        Rsc::RscManager::DisposeInstance();
        Environment::Dispose();
    }

    std::string WriteConfig(const std::string& components)
    {
        return directory.Write("test.config", "<KiroConfigurationDocument><Components>" + components +
                                                  "</Components></KiroConfigurationDocument>");
    }

    Sm::SystemManager& Create()
    {
        auto& manager = Singleton<Sm::SystemManager>::CreateInstance(host, settings.GetProcessSettings(), false);
        manager.PublishServices();
        return manager;
    }

    static std::shared_ptr<Kiro::Services::Internal::ISystemManagerService> GetService()
    {
        return Rsc::ServiceManager::GetService(
            Kiro::Services::Internal::SystemManagerServiceProxyFactory::GetInstance());
    }

    TemporaryDirectory directory;
    CapturedLog log;
    Journal journal;
    FakeHost host;
    FakeProcess process{"Main", journal};
    Factory factory{process};
    Settings::KiroSettings settings;
};

} // namespace

TEST_F(SystemManagerTest, BringsTheSystemUpAndDown)
{
    Announcements announcements;
    auto& manager = Create();
    manager.SetupSystem();
    EXPECT_THAT(announcements.Await(5), ElementsAre("Startup", "State Starting 0", "State SettingsReady 0",
                                                    "State ConfigReady 0", "State Running 0"));
    auto service = GetService();
    EXPECT_THAT(service->GetApplicationNames(), ElementsAre("Main"));
    EXPECT_THAT(manager.GetComponentsOfType("Pump"), ElementsAre("one", "two"));
    EXPECT_THAT(service->GetComponentsOfType("pump"), IsEmpty());
    EXPECT_EQ(service->GetProcessNameOfComponent("three"), "Main");
    EXPECT_EQ(service->GetProcessNameOfComponent("nobody"), "");
    journal.Take();

    service->PowerDown();
    EXPECT_THAT(journal.Take(), ElementsAre("Main: PowerDownComponent three", "Main: PowerDownComponent two",
                                            "Main: PowerDownComponent one"));
    EXPECT_TRUE(manager.Dispose());
    EXPECT_THAT(manager.GetApplicationNames(), IsEmpty());
    EXPECT_THROW(service->GetApplicationNames(), RscException);
    EXPECT_THROW(manager.PowerDown(), InvalidOperationException);
    EXPECT_EQ(journal.Take().back(), "Main: ShutdownProcess");
    EXPECT_TRUE(manager.Dispose());
    EXPECT_THAT(journal.Take(), IsEmpty());
    EXPECT_THAT(log.GetLines("Error"), IsEmpty());
}

TEST_F(SystemManagerTest, CarriesAnErrorOnToEveryLaterState)
{
    Announcements announcements;
    process.reactions["LoadComponentConfig two"] = Throw(Exception("unreadable"));
    process.reactions["StartComponent one"] = Throw(Exception("stuck"));
    Create().SetupSystem();
    EXPECT_THAT(announcements.Await(7),
                ElementsAre("Startup", "State Starting 0", "State SettingsReady 0", "State SettingsReady 1",
                            "State ConfigReady 1", "State Running 1", "State Running 1"));
}

TEST_F(SystemManagerTest, TakesDownWhatAFailedSetupLeaves)
{
    process.reactions["InitializeComponent three"] = Throw(Exception("fails"));
    process.properties["three"] = {0, Kiro::ComponentCategory::System, true, false};
    auto& manager = Create();
    EXPECT_THROW(manager.SetupSystem(), Exception);
    journal.Take();
    EXPECT_TRUE(manager.Dispose());
    EXPECT_THAT(journal.Take(), ElementsAre("Main: DestroyComponent three", "Main: DestroyComponent two",
                                            "Main: DestroyComponent one", "Main: ShutdownProcess"));
}

TEST_F(SystemManagerTest, GoesOnWithTheShutdownAfterAFailureAndReportsItOnce)
{
    auto& manager = Create();
    manager.SetupSystem();
    process.reactions["DestroyComponent two"] = Throw(InvalidOperationException("Component 'two' does not exist"));
    process.reactions["ShutdownProcess"] = Throw(42);
    journal.Take();
    EXPECT_FALSE(manager.Dispose());
    const auto calls = journal.Take();
    EXPECT_THAT(std::vector(calls.end() - 4, calls.end()),
                ElementsAre("Main: DestroyComponent three", "Main: DestroyComponent two", "Main: DestroyComponent one",
                            "Main: ShutdownProcess"));
    EXPECT_EQ(log.Count("Error: Exception occurs while shutting down the system: InvalidOperationException: Component "
                        "'two' does not exist"),
              1);
}

TEST_F(SystemManagerTest, AnswersQueriesDuringAWalkFromTheLastPhaseAndRefusesPowerDown)
{
    auto& manager = Create();
    EXPECT_THAT(manager.GetApplicationNames(), IsEmpty());
    std::vector<std::string> refusals;
    const auto powerDown = [&]
    {
        try
        {
            GetService()->PowerDown();
        }
        catch (const InvalidOperationException& exception)
        {
            refusals.push_back(exception.GetMessage());
        }
    };
    process.reactions["CreateComponent Pump two "] = [&]
    {
        EXPECT_THAT(manager.GetApplicationNames(), ElementsAre("Main"));
        EXPECT_THAT(manager.GetComponentsOfType("Pump"), IsEmpty());
        powerDown();
    };
    process.reactions["StartComponent two"] = [&]
    {
        EXPECT_EQ(manager.GetProcessNameOfComponent("one"), "Main");
    };
    process.reactions["StopComponent one"] = [&]
    {
        EXPECT_THAT(manager.GetComponentsOfType("Pump"), ElementsAre("one", "two"));
        powerDown();
    };
    process.reactions["PowerDownComponent one"] = powerDown;

    std::atomic<bool> isOver = false;
    std::thread observer(
        [&]
        {
            while (!isOver)
            {
                EXPECT_LE(manager.GetApplicationNames().size(), 1U);
                EXPECT_LE(manager.GetComponentInfos().size(), 3U);
                EXPECT_THAT(manager.GetProcessNameOfComponent("three"), testing::AnyOf("", "Main"));
                manager.SetEnvironmentVariable("OBSERVED", "yes");
            }
        });
    manager.SetupSystem();
    manager.PowerDown();
    manager.Dispose();
    isOver = true;
    observer.join();
    EXPECT_EQ(refusals.size(), 3U);
    EXPECT_THAT(refusals, testing::Each(testing::StartsWith("Power down is refused")));
}

TEST_F(SystemManagerTest, StaysWhileACallOfItsServicesGoesOn)
{
    auto& manager = Create();
    manager.SetupSystem();
    std::promise<void> begun;
    std::promise<void> mayEnd;
    host.onQuery = [&]
    {
        begun.set_value();
        mayEnd.get_future().wait();
    };
    const auto service =
        Rsc::ServiceManager::GetService(Kiro::Services::SystemManagerServiceProxyFactory::GetInstance());
    auto call = std::async(std::launch::async, [&] { return service->GetComponentInfos().size(); });
    begun.get_future().wait();
    EXPECT_FALSE(manager.Dispose());
    EXPECT_TRUE(manager.IsInUse());
    EXPECT_THAT(log.GetLines("Error"),
                ElementsAre("Error: Exception occurs while shutting down the system: Exception: A call of a system "
                            "manager service is still in progress."));
    mayEnd.set_value();
    EXPECT_EQ(call.get(), 3U) << "what it began with";
}

TEST_F(SystemManagerTest, ServesItsTwoServices)
{
    auto& fixed = host.defaultComponents.emplace_back();
    fixed.name = "Vela.System.Scm";
    Create().SetupSystem();
    journal.Take();
    const auto service = GetService();
    const auto publicService =
        Rsc::ServiceManager::GetService(Kiro::Services::SystemManagerServiceProxyFactory::GetInstance());
    const auto infos = publicService->GetComponentInfos();
    std::vector<std::string> names;
    names.reserve(infos.size());
    for (const auto& info : infos)
    {
        names.push_back(info.name.ToString());
    }
    EXPECT_THAT(names, ElementsAre("Vela.System.Scm", "one", "two", "three"));
    EXPECT_EQ(infos.back().type, "Valve");
    EXPECT_EQ(infos.back().startOrder, 1U);
    EXPECT_TRUE(infos[1].isRequired);
    EXPECT_FALSE(infos[2].isRequired);
    EXPECT_TRUE(infos[2].isEnabled);

    publicService->Shutdown();
    service->Shutdown();
    EXPECT_EQ(host.shutdownRequests, 2);
    service->SetEnvironmentVariable("NUMBER", 42);
    EXPECT_THAT(journal.Take(), ElementsAre("Main: SetEnvironmentVariable NUMBER 42"));
    Rsc::RscString<128> current;
    EXPECT_TRUE(service->ResolveDeprecatedVariableName("OLD", current));
    EXPECT_EQ(current, "NEW");
    EXPECT_FALSE(service->ResolveDeprecatedVariableName("OTHER", current));
}
