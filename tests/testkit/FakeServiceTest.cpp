#include <Vela/System/Kiro/Testing/FakeService.hpp>
#include <Vela/System/Kiro/Testing/HostedComponent.hpp>

#include <gtest/gtest.h>
#include <libraries/recording/IRecordingService.hpp>

namespace Vela::System::Kiro::Testing
{

using Vela::Testing::IRecordingService;

namespace
{

class SilentService : public IRecordingService
{
public:
    Text GetName() override
    {
        return "silent";
    }

    std::uint32_t GetStepCount() override
    {
        return 0;
    }

    void Act(const Text& action) override
    {
        lastAction = action.ToString();
    }

    String lastAction;
};

/// A component that calls the service of "Valve" when it starts.
class FakeServiceTest : public ::testing::Test
{
protected:
    ComponentHost host;
    HostedComponent pump{host,
                         {.type = "RecordingController",
                          .name = "Pump",
                          .settingsPath = host.WriteFile("Pump.script", "Pump Start call Valve open")}};
    SilentService valve;
};

} // namespace

TEST_F(FakeServiceTest, TakesTheCallsOfTheComponent)
{
    const FakeService<IRecordingService> service(host, "Valve", valve);
    pump.BringUp();
    EXPECT_EQ(valve.lastAction, "open");
    EXPECT_EQ(service.CountCalls<&IRecordingService::Act>(), 1U);
    EXPECT_EQ(service.CountCalls<&IRecordingService::GetName>(), 0U);
}

TEST_F(FakeServiceTest, FailsOnRequest)
{
    FakeService<IRecordingService> service(host, "Valve", valve);
    service.FailOn<&IRecordingService::GetName>(InvalidOperationException("not asked for"));
    service.FailOn<&IRecordingService::Act>(RscException("The valve does not answer."));
    pump.BringUpTo(LifecycleStep::SetupConfig);
    EXPECT_EQ(pump.RunAndExpectFailure(LifecycleStep::Start), "The valve does not answer.");
    EXPECT_EQ(valve.lastAction, "");
    EXPECT_EQ(service.CountCalls<&IRecordingService::Act>(), 1U);

    service.FailOnAll(std::runtime_error("Nothing works."));
    EXPECT_EQ(pump.RunAndExpectFailure(LifecycleStep::Start), "The valve does not answer.");
    service.Heal();
    pump.Run(LifecycleStep::Start);
    service.FailOnAll(std::runtime_error("Nothing works."));
    EXPECT_EQ(pump.RunAndExpectFailure(LifecycleStep::Start), "Nothing works.");
}

TEST_F(FakeServiceTest, IsMissingBeforeAndAfterItself)
{
    const auto missing = [this]
    {
        return pump.RunAndExpectFailure(LifecycleStep::Start);
    };
    const String reason = "Could not retrieve service 'Vela.Testing.IRecordingService' from service provider 'Valve'.";
    pump.BringUpTo(LifecycleStep::SetupConfig);
    EXPECT_EQ(missing(), reason);
    {
        FakeService<IRecordingService> service(host, "Valve", valve);
        pump.Run(LifecycleStep::Start);
        const auto proxy = Rsc::ServiceManager::GetService(Vela::Testing::RecordingServiceProxyFactory(),
                                                           Rsc::ServiceProvider::Component("Valve"));
        service.Withdraw();
        EXPECT_EQ(missing(), reason);
        EXPECT_THROW(proxy->GetName(), RscException);
    }
    EXPECT_EQ(missing(), reason);
}

TEST_F(FakeServiceTest, IsFoundAsAServiceOfTheProcessAndByANameOfItsOwn)
{
    const Vela::Testing::RecordingServiceProxyFactory factory;
    const FakeService<IRecordingService> ofTheProcess(host, {}, valve);
    const FakeService<IRecordingService> second(host, "Valve", valve, "Plant.Second");
    for (const auto& provider :
         {Rsc::ServiceProvider::MainProcess(), Rsc::ServiceProvider::Process(host.GetOptions().processName),
          Rsc::ServiceProvider::Component("Valve", "Plant.Second")})
    {
        EXPECT_EQ(Rsc::ServiceManager::GetService(factory, provider)->GetName().ToString(), "silent");
    }
    EXPECT_EQ(ofTheProcess.CountCalls<&IRecordingService::GetName>(), 2U);
    EXPECT_EQ(second.CountCalls<&IRecordingService::GetName>(), 1U);
}

} // namespace Vela::System::Kiro::Testing
