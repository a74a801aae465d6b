// The level controller beside a plant that the test makes up, and the alarm service of the real one.

#include "TankService.hpp"

#include <Vela/System/Kiro/Testing/FakeService.hpp>
#include <Vela/System/Kiro/Testing/HostedComponent.hpp>

#include <gtest/gtest.h>

#include <atomic>

namespace WaterTanks
{

using namespace Vela::System::Kiro::Testing;

namespace
{

/// The upper tank is half full; the level of the lower one is the test's.
class SomeTanks final : public ITankService
{
public:
    std::vector<TankState> GetTanks() override
    {
        return {{1.0, 2.0}, {lowerLevel, 2.0}};
    }

    double GetDemand() override
    {
        return 0;
    }

    void SetActuators(double, double valve) override
    {
        lastValve = valve;
    }

    std::atomic<double> lowerLevel = 1.0;
    std::atomic<double> lastValve = 0.5;
};

class LevelControllerTest : public testing::Test
{
protected:
    ComponentHost host;
    SomeTanks tanks;
    FakeService<ITankService> service{host, "Simulator", tanks};
    HostedComponent alarms{host, {.type = "WaterTanks::AlarmService", .name = "Alarms", .library = "PlantServices"}};
    HostedComponent controller{
        host,
        {.type = "WaterTanks::LevelController",
         .name = "Controller",
         .settingsPath = host.WriteFile("Controller.settings", R"(<LevelControllerSettings cycleTime="5ms"/>)"),
         .library = "LevelController"}};
};

} // namespace

TEST_F(LevelControllerTest, OpensTheValveAndRaisesAnAlarmUntilTheTankIsFullEnough)
{
    tanks.lowerLevel = 0.3;
    alarms.BringUp();
    controller.BringUp();
    host.AwaitLog("ALARM    The lower tank runs low (alarms: 1)");
    EXPECT_GT(tanks.lastValve, 0.9);

    tanks.lowerLevel = 1.0;
    host.AwaitLog("all well The lower tank runs low no more (alarms: 0)");
}

TEST_F(LevelControllerTest, GoesOnWhenThePlantAnswersAgain)
{
    alarms.BringUp();
    controller.BringUp();
    service.FailOn<&ITankService::GetTanks>(Vela::RscException("The sensors are silent."));
    host.AwaitLog("The control cycle failed: RscException: The sensors are silent.");

    tanks.lowerLevel = 0.3;
    service.Heal();
    host.AwaitLog("ALARM    The lower tank runs low");
}

TEST_F(LevelControllerTest, DoesNotComeUpWithoutThePlant)
{
    service.Withdraw();
    alarms.BringUp();
    controller.BringUpTo(LifecycleStep::Initialize);
    const auto message = controller.RunAndExpectFailure(LifecycleStep::SubscribeServices);
    EXPECT_NE(message.find("WaterTanks.ITankService"), Vela::String::npos) << message;
}

TEST_F(LevelControllerTest, RefusesLimitsThatContradictEachOther)
{
    alarms.BringUp();
    host.WriteFile("Controller.settings", R"(<LevelControllerSettings lowAlarm="1.5" highAlarm="0.5"/>)");
    controller.BringUpTo(LifecycleStep::SubscribeServices);
    EXPECT_EQ(controller.RunAndExpectFailure(LifecycleStep::LoadSettings),
              "The low alarm 1.5 must lie below the high alarm 0.5.");
}

} // namespace WaterTanks
