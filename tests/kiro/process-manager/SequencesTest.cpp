#include "TestProcess.hpp"

#include <Vela/Exceptions.hpp>

using namespace Vela;
using namespace Vela::Testing;

namespace
{

using Steps = std::vector<String>;

const Steps forwardSteps = {"Initialize",      "SubscribeServices", "LoadSettings /s", "SetupSettings",
                            "PublishServices", "LoadConfig",        "SetupConfig",     "Start"};

struct Failure
{
    const char* step;
    Steps undone;
};

const Failure failures[] = {{"Initialize", {"Dispose", "Destroyed"}},
                            {"SubscribeServices", {"Dispose", "Destroyed"}},
                            {"LoadSettings /s", {"Dispose", "Destroyed"}},
                            {"SetupSettings", {"Dispose", "Destroyed"}},
                            {"PublishServices", {"Dispose", "Destroyed"}},
                            {"LoadConfig", {"ResetConfig", "Dispose", "Destroyed"}},
                            {"SetupConfig", {"ResetConfig", "Dispose", "Destroyed"}},
                            {"Start", {"Stop", "ResetConfig", "Dispose", "Destroyed"}}};

/// The forward steps up to and including one, then those that undo.
Steps UpTo(const String& step, const Steps& undone)
{
    Steps steps(forwardSteps.begin(), std::find(forwardSteps.begin(), forwardSteps.end(), step) + 1);
    steps.insert(steps.end(), undone.begin(), undone.end());
    return steps;
}

class Sequences : public TestProcess
{
protected:
    void BuildUp()
    {
        processManager.BuildUpComponent("C", "Controller", "", "/s");
    }

    String TearDownAll()
    {
        return GetMessageOf<InvalidOperationException>([&] { processManager.TearDownComponent("C"); });
    }
};

} // namespace

TEST_F(Sequences, BuildUpAComponentInOrder)
{
    BuildUp();
    EXPECT_EQ(record.steps, forwardSteps);
}

TEST_F(Sequences, UndoWhatWasDoneWhenAStepFails)
{
    for (const auto& [step, undone] : failures)
    {
        record = {};
        record.failing = {step};
        try
        {
            BuildUp();
            FAIL() << step;
        }
        catch (const StepFailure& failure)
        {
            EXPECT_EQ(failure.step, step);
        }
        EXPECT_EQ(record.steps, UpTo(step, undone));
        EXPECT_EQ(processManager.GetComponentProvider().GetComponent("C"), nullptr);
    }
}

TEST_F(Sequences, UndoToTheEndAndKeepTheFirstFailure)
{
    record.failing = {"Start", "Stop", "ResetConfig", "Dispose"};
    try
    {
        BuildUp();
        FAIL();
    }
    catch (const StepFailure& failure)
    {
        EXPECT_EQ(failure.step, "Start");
    }
    EXPECT_EQ(record.steps, UpTo("Start", {"Stop", "ResetConfig", "Dispose", "Destroyed"}));
    for (const char* what : {"stopping", "resetting", "disposing"})
    {
        EXPECT_TRUE(log.Contains(String("Unspecified exception occurs while ") + what + " component 'C'"));
    }
}

TEST_F(Sequences, TearDownAComponentInOrder)
{
    BuildUp();
    record = {};
    EXPECT_EQ(TearDownAll(), "");
    EXPECT_EQ(record.steps, (Steps{"Stop", "ResetConfig", "Dispose", "Destroyed"}));
    EXPECT_EQ(GetMessageOf<ArgumentException>([&] { processManager.TearDownComponent("C"); }),
              "Component 'C' does not exists");
}

TEST_F(Sequences, TearDownToTheEndAndReportTheLastFailure)
{
    const std::pair<std::set<String>, const char*> cases[] = {
        {{"Stop"}, "Stopping of component 'C' failed"},
        {{"ResetConfig"}, "Stopping of component 'C' failed"},
        {{"Stop", "Dispose"}, "Diposing of component 'C' failed"}};
    for (const auto& [failing, message] : cases)
    {
        BuildUp();
        record = {};
        record.failing = failing;
        EXPECT_EQ(TearDownAll(), message);
        EXPECT_EQ(record.steps, (Steps{"Stop", "ResetConfig", "Dispose", "Destroyed"}));
        record = {};
    }
}
