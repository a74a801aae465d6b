// What a system does when one of its components fails, at any step: three processes with a component each, of which
// the one in the middle is faulty.

#include "SystemFixture.hpp"

#include <algorithm>

namespace Vela::Testing
{
namespace
{

const std::vector<std::string> settingsSteps{"Initialize", "SubscribeServices", "LoadSettings", "SetupSettings",
                                             "PublishServices"};
const std::vector<std::string> configSteps{"LoadConfig", "SetupConfig"};

/// The steps, with a blank before each.
std::string Join(const std::vector<std::string>& steps)
{
    std::string text;
    for (const std::string& step : steps)
    {
        text += " " + step;
    }
    return text;
}

/// The steps up to the one that fails; all of them when it is not among them.
std::string JoinUpTo(const std::vector<std::string>& steps, const std::string& failing)
{
    const auto found = std::find(steps.begin(), steps.end(), failing);
    return Join({steps.begin(), found == steps.end() ? found : found + 1});
}

/// A step, what is thrown there, and what the log says of it.
struct Fault
{
    const char* step;
    const char* thrown;
    const char* message;
};

void PrintTo(const Fault& fault, std::ostream* stream)
{
    *stream << fault.step;
}

const Fault settingsFaults[] = {
    {"Initialize", "platform the pump is gone", "Exception occurs while setting up component 'Faulty': "},
    {"SubscribeServices", "standard the pump is gone",
     "Exception occurs while setting up component 'Faulty': the pump is gone"},
    {"LoadSettings", "own the pump is gone", "Exception occurs while setting up component 'Faulty': the pump is gone"},
    {"SetupSettings", "unknown", "Unspecified exception occurs while setting up component 'Faulty'"},
    {"PublishServices", "platform the pump is gone", "Exception occurs while setting up component 'Faulty': "},
};
const Fault configFaults[] = {
    {"LoadConfig", "own the pump is gone",
     "Exception occurs while setting up config of component 'Faulty': the pump is gone"},
    {"SetupConfig", "unknown", "Unspecified exception occurs while setting up config of component 'Faulty'"},
};
const Fault startFaults[] = {
    {"Start", "platform the pump is gone", "Exception occurs while starting component 'Faulty': "},
};
const Fault backwardFaults[] = {
    {"Stop", "platform the pump is gone", "Exception occurs while stopping component 'Faulty': "},
    {"ResetConfig", "own the pump is gone",
     "Exception occurs while resetting config of component 'Faulty': the pump is gone"},
    {"Dispose", "unknown", "Unspecified exception occurs while disposing component 'Faulty'"},
};

class FailurePolicyTest : public SystemTest, public testing::WithParamInterface<Fault>
{
protected:
    const std::string settings = Join(settingsSteps);
    const std::string config = Join(configSteps);
    const std::string whole = "Create" + settings + config + " Start Stop ResetConfig Dispose Destroy";

    void ConfigureFaulty(const std::string& attributes) const
    {
        Configure({"MainProcess", "Left", "Right"}, {{"First", "Left", "Recorder:controller:order=1"},
                                                     {"Faulty", "Right", "Recorder:controller:order=2", attributes},
                                                     {"Last", "MainProcess", "Recorder:controller:order=3"}});
        WriteScript(std::string("Faulty ") + GetParam().step + " throw " + GetParam().thrown + "\n");
    }

    void ConfigureRequired() const
    {
        ConfigureFaulty("isRequired=\"true\"");
    }

    /// Runs a system whose start fails.
    void RunToFailure()
    {
        StartedProcess main = system.Start();
        EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
        EXPECT_TRUE(main.HasOutput(GetParam().message)) << main.GetOutput();
        EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
        EXPECT_EQ(system.FindLeftovers(), "");
    }

    /// Runs a system that comes up, and ends it in order.
    void RunToEnd()
    {
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_TRUE(main.HasOutput(GetParam().message)) << main.GetOutput();
        EXPECT_EQ(system.FindLeftovers(), "");
    }

    void ExpectOthersToRunAsEver() const
    {
        EXPECT_EQ(GetSteps("First"), whole);
        EXPECT_EQ(GetSteps("Last"), whole);
    }
};

class SettingsFailure : public FailurePolicyTest
{
};

class ConfigFailure : public FailurePolicyTest
{
};

class ForwardFailure : public FailurePolicyTest
{
};

class StartFailure : public FailurePolicyTest
{
};

class BackwardFailure : public FailurePolicyTest
{
};

TEST_P(SettingsFailure, OfARequiredComponentTakesBackThePhaseAndEndsTheStart)
{
    ConfigureRequired();
    RunToFailure();
    EXPECT_EQ(GetSteps("First"), "Create" + settings + " Dispose Destroy");
    EXPECT_EQ(GetSteps("Faulty"), "Create" + JoinUpTo(settingsSteps, GetParam().step) + " Dispose Destroy");
    EXPECT_EQ(GetSteps("Last"), "Create Destroy");
    EXPECT_EQ(GetOrder("Dispose"), "Faulty First");
    EXPECT_EQ(GetOrder("Destroy"), "Last Faulty First");
}

TEST_P(ConfigFailure, OfARequiredComponentTakesBackThePhaseAndEndsTheStart)
{
    ConfigureRequired();
    RunToFailure();
    EXPECT_EQ(GetSteps("First"), "Create" + settings + config + " ResetConfig Dispose Destroy");
    EXPECT_EQ(GetSteps("Faulty"),
              "Create" + settings + JoinUpTo(configSteps, GetParam().step) + " ResetConfig Dispose Destroy");
    EXPECT_EQ(GetSteps("Last"), "Create" + settings + " Dispose Destroy");
    EXPECT_EQ(GetOrder("ResetConfig"), "Faulty First");
    EXPECT_EQ(GetOrder("Dispose"), "Last Faulty First");
}

TEST_P(StartFailure, OfARequiredComponentLetsTheOthersStart)
{
    ConfigureRequired();
    RunToEnd();
    ExpectOthersToRunAsEver();
    EXPECT_EQ(GetSteps("Faulty"), whole);
}

TEST_P(ForwardFailure, OfAnOptionalComponentRemovesItAlone)
{
    ConfigureFaulty("");
    RunToEnd();
    ExpectOthersToRunAsEver();
    std::vector<std::string> steps = settingsSteps;
    steps.insert(steps.end(), configSteps.begin(), configSteps.end());
    steps.push_back("Start");
    EXPECT_EQ(GetSteps("Faulty"), "Create" + JoinUpTo(steps, GetParam().step) + " Dispose Destroy");
}

TEST_P(BackwardFailure, DoesNotKeepAnythingFromBeingTakenDown)
{
    ConfigureRequired();
    RunToEnd();
    ExpectOthersToRunAsEver();
    EXPECT_EQ(GetSteps("Faulty"), whole);
}

std::string GetStepName(const testing::TestParamInfo<Fault>& info)
{
    return info.param.step;
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, SettingsFailure, testing::ValuesIn(settingsFaults), GetStepName);
INSTANTIATE_TEST_SUITE_P(AtEachStep, ConfigFailure, testing::ValuesIn(configFaults), GetStepName);
INSTANTIATE_TEST_SUITE_P(AtEachStep, StartFailure, testing::ValuesIn(startFaults), GetStepName);
INSTANTIATE_TEST_SUITE_P(AtEachStep, BackwardFailure, testing::ValuesIn(backwardFaults), GetStepName);
INSTANTIATE_TEST_SUITE_P(InTheSettingsPhase, ForwardFailure, testing::ValuesIn(settingsFaults), GetStepName);
INSTANTIATE_TEST_SUITE_P(InTheConfigurationPhase, ForwardFailure, testing::ValuesIn(configFaults), GetStepName);
INSTANTIATE_TEST_SUITE_P(InTheStartPhase, ForwardFailure, testing::ValuesIn(startFaults), GetStepName);

class SpecialComponentTest : public SystemTest
{
};

TEST_F(SpecialComponentTest, DisabledAndUncategorisedOnesAreCreatedAndNothingElse)
{
    Configure({"MainProcess", "Left"}, {{"Disabled", "Left", "RecordingController", "isEnabled=\"false\""},
                                        {"None", "Left", "RecordingNone"},
                                        {"Plain", "Left", "Recorder"}});
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Component 'None' in process 'Left' ignored for execution: Component category is "
                               "'None'."))
        << main.GetOutput();
    EXPECT_EQ(GetSteps("Disabled"), "Create Destroy");
    EXPECT_EQ(GetSteps("None"), "Create Destroy") << "its process destroys it at its end";
    EXPECT_EQ(GetSteps("Plain"), "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices "
                                 "LoadConfig SetupConfig ResetConfig Dispose Destroy");
}

TEST_F(SpecialComponentTest, AChildThatDiesInsideACallFailsTheCallAndTheStart)
{
    // The watchdog must not be faster than the call, so it sleeps.
    system.WriteSettings("<ProcessSettings singleProcess=\"false\" watchdogIdleTime=\"1h\"/>");
    Configure({"MainProcess", "Left", "Right"},
              {{"First", "Left", "Recorder:controller:order=1"}, {"Dying", "Right", "Recorder:system:order=2"}});
    WriteScript("Dying SetupSettings kill\n");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("Exception occurs while setting up component 'Dying': RscException: "))
        << main.GetOutput();
    EXPECT_TRUE(GetSteps("First").ends_with("PublishServices Dispose Destroy")) << GetSteps("First");
    EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
    EXPECT_EQ(system.FindLeftovers(), "");
}

} // namespace
} // namespace Vela::Testing
