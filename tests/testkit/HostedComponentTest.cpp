#include <Vela/System/Kiro/Testing/ComponentLibrary.hpp>
#include <Vela/System/Kiro/Testing/HostedComponent.hpp>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <libraries/recording/IRecordingService.hpp>
#include <support/MappedFiles.hpp>

#include <memory>

namespace Vela::System::Kiro::Testing
{

using Vela::Testing::RecordingServiceProxyFactory;

namespace
{

constexpr const char* pumpType = "RecordingController";

class HostedComponentTest : public ::testing::Test
{
protected:
    /// A controller that does what the lines of the script say, from LoadSettings on.
    [[nodiscard]] std::unique_ptr<HostedComponent> MakePump(const String& script = {})
    {
        const String settings = host.WriteFile("settings/Pump.script", script);
        return std::make_unique<HostedComponent>(
            host, ComponentDescription{.type = pumpType, .name = "Pump", .settingsPath = settings});
    }

    /// The steps that the component has taken, blank-separated.
    [[nodiscard]] String GetSteps() const
    {
        const String mark = "Pump takes step ";
        String steps;
        for (const LogMessage& message : host.GetLog())
        {
            if (message.text.starts_with(mark))
            {
                steps += (steps.empty() ? "" : " ") + message.text.substr(mark.size());
            }
        }
        return steps;
    }

    ComponentHost host;
};

/// The message of the StepFailure that a statement throws.
template <typename Action>
String GetFailure(const Action& action)
{
    try
    {
        action();
    }
    catch (const StepFailure& failure)
    {
        return failure.what();
    }
    return "no failure";
}

} // namespace

TEST_F(HostedComponentTest, LivesAsInASystem)
{
    const String library = ComponentLibrary::GetAll().at("Recording");
    const auto pump = MakePump();
    EXPECT_TRUE(Vela::Testing::IsMapped(library));
    EXPECT_EQ(pump->GetName(), "Pump");
    EXPECT_TRUE(pump->GetProperties().IsControllerComponent);
    EXPECT_EQ(pump->GetProperties().Category, ComponentCategory::Custom);

    pump->BringUpTo(LifecycleStep::SetupSettings);
    EXPECT_EQ(GetSteps(), "Create Initialize SubscribeServices LoadSettings SetupSettings");
    pump->BringUp();
    pump->Run(LifecycleStep::PowerDown);
    pump->TearDown();
    EXPECT_EQ(GetSteps(), "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices LoadConfig "
                          "SetupConfig Start PowerDown Stop ResetConfig Dispose Destroy");
    EXPECT_FALSE(Vela::Testing::IsMapped(library));
    pump->TearDown();
}

TEST_F(HostedComponentTest, TakesSingleStepsAgainAndUndoesTheRest)
{
    auto pump = MakePump();
    pump->BringUpTo(LifecycleStep::SetupConfig);
    pump->Run(LifecycleStep::ResetConfig);
    pump->BringUpTo(LifecycleStep::SetupConfig);
    pump.reset();
    EXPECT_EQ(GetSteps(), "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices LoadConfig "
                          "SetupConfig ResetConfig LoadConfig SetupConfig ResetConfig Dispose Destroy");
}

TEST_F(HostedComponentTest, SaysWhichStepFailedAndWhy)
{
    for (const auto& [action, text] : std::map<String, String>{
             {"throw platform The valve is stuck.", "The valve is stuck."},
             {"throw standard The valve is stuck.", "The valve is stuck."},
             {"throw own The valve is stuck.", "The valve is stuck."},
         })
    {
        const auto pump = MakePump("Pump Start " + action);
        pump->BringUpTo(LifecycleStep::SetupConfig);
        EXPECT_EQ(pump->RunAndExpectFailure(LifecycleStep::Start), text) << action;
    }
    const auto pump = MakePump("Pump SetupConfig throw platform No pressure.\nPump Stop throw platform Hot.");
    EXPECT_EQ(GetFailure([&] { pump->BringUp(); }),
              "SetupConfig of component 'Pump' failed: InvalidOperationException: No pressure.");
    pump->BringUp();
    EXPECT_EQ(GetFailure([&] { pump->TearDown(); }),
              "Stop of component 'Pump' failed: InvalidOperationException: Hot.");
    EXPECT_TRUE(GetSteps().ends_with(" Stop ResetConfig Dispose Destroy")) << GetSteps();
}

TEST_F(HostedComponentTest, FailsTheTestForAFailureThatNobodyTakes)
{
    const auto pump = MakePump();
    EXPECT_NONFATAL_FAILURE(static_cast<void>(pump->RunAndExpectFailure(LifecycleStep::Initialize)),
                            "Initialize of component 'Pump' did not fail.");
    auto hot = std::make_unique<HostedComponent>(
        host, ComponentDescription{.type = pumpType,
                                   .name = "HotPump",
                                   .settingsPath = host.WriteFile("Hot", "HotPump Dispose throw unknown Hot."),
                                   .library = "Recording"});
    hot->BringUp();
    EXPECT_NONFATAL_FAILURE(hot.reset(), "Dispose of component 'HotPump' failed: unspecified exception");
}

TEST_F(HostedComponentTest, IsNotMadeOfWhatIsNotThere)
{
    EXPECT_EQ(GetFailure([&] { HostedComponent(host, {.type = "Valve", .name = "Valve1"}); }).substr(0, 39),
              "Create of component 'Valve1' failed: In");
    EXPECT_FALSE(Vela::Testing::IsMapped(ComponentLibrary::GetAll().at("Recording")));
    EXPECT_EQ(GetFailure([&] { HostedComponent(host, {.type = pumpType, .name = "Pump", .library = "Pumps"}); }),
              "Create of component 'Pump' failed: InvalidOperationException: The test has no library 'Pumps'; it has "
              "'Recording'.");
    const ComponentLibrary missing("Missing", host.GetDirectory() + "/libMissing.so");
    EXPECT_NE(GetFailure([&] { HostedComponent(host, {.type = pumpType, .name = "Pump", .library = "Missing"}); })
                  .find("libMissing.so"),
              String::npos);
    EXPECT_NE(GetFailure([&] { HostedComponent(host, {.type = pumpType, .name = "Pump"}); }).find("has no library ''"),
              String::npos);
}

TEST_F(HostedComponentTest, OffersWhatItPublishes)
{
    const RecordingServiceProxyFactory factory;
    const auto pump = MakePump("Pump PublishServices publish");
    EXPECT_FALSE(pump->Publishes(factory));
    EXPECT_THROW(static_cast<void>(pump->GetService(factory)), InvalidOperationException);
    pump->BringUp();
    EXPECT_TRUE(pump->Publishes(factory));
    EXPECT_FALSE(pump->Publishes(factory, "Plant.IOther"));
    EXPECT_EQ(pump->GetService(factory)->GetName().ToString(), "Pump");
    pump->TearDown();
    EXPECT_FALSE(pump->Publishes(factory));
}

} // namespace Vela::System::Kiro::Testing
