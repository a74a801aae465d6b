#include <Sm/StepJournal.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <thread>

using namespace Vela;
using Vela::System::Kiro::Internal::Sm::StepJournal;
using Outcome = StepJournal::Outcome;

namespace
{

constexpr std::size_t capacity = StepJournal::chunkSize * StepJournal::maximumChunks;

} // namespace

TEST(StepJournal, TellsPhasesAndWhatRunsInThem)
{
    StepJournal journal;
    journal.BeginPhase("settings");
    journal.End(journal.Begin("Initialize", "component", "Tank", "Plant"), Outcome::Failed);
    auto* running = journal.Begin("LoadSettings", "component", "Valve", "Plant");

    auto steps = journal.Read();
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_STREQ(steps[0].step, "settings");
    EXPECT_EQ(steps[0].outcome, Outcome::Running);
    EXPECT_EQ(*steps[1].name, "Tank");
    EXPECT_EQ(steps[1].outcome, Outcome::Failed);
    EXPECT_STREQ(steps[2].phase, "settings");
    EXPECT_EQ(steps[2].outcome, Outcome::Running);
    EXPECT_GE(steps[2].end, steps[2].begin) << "until now";

    journal.End(running, Outcome::Done);
    journal.BeginPhase(nullptr);
    steps = journal.Read();
    EXPECT_EQ(journal.GetPhase(), nullptr);
    EXPECT_EQ(steps[0].outcome, Outcome::Done);
    EXPECT_LE(steps[2].end, steps[0].end);
}

TEST(StepJournal, KeepsTheLastFailureOfEachComponentInBoundedMemory)
{
    StepJournal journal;
    journal.NoteFailure("Initialize", "Tank", "Plant", "first");
    journal.NoteFailure("Start", "Tank", "Plant", String(100'000, 'x'));
    journal.NoteFailure("Start", "Valve", "Plant", "it sticks");
    const auto failures = journal.GetFailures();
    ASSERT_EQ(failures.size(), 2U);
    EXPECT_STREQ(failures.at("Tank")->step, "Start");
    EXPECT_EQ(failures.at("Tank")->text.size(), StepJournal::maximumErrorText);
    EXPECT_EQ(failures.at("Valve")->text, "it sticks");
}

TEST(StepJournal, IsReadWhileItIsWrittenUntilItIsFull)
{
    StepJournal journal;
    std::thread writer(
        [&]
        {
            for (std::size_t i = 0; i < capacity + 100; ++i)
            {
                journal.End(journal.Begin("Start", "component", std::to_string(i % 50), "Plant"), Outcome::Done);
            }
        });
    std::size_t seen = 0;
    while (seen < capacity)
    {
        const auto steps = journal.Read();
        ASSERT_GE(steps.size(), seen);
        for (std::size_t i = seen; i < steps.size(); ++i)
        {
            ASSERT_EQ(*steps[i].name, std::to_string(i % 50));
            ASSERT_LE(steps[i].begin, steps[i].end);
        }
        seen = steps.size();
    }
    EXPECT_LE(journal.ReadToLatest().size(), capacity + 50U);
    writer.join();
    EXPECT_EQ(journal.Read().size(), capacity);
    EXPECT_EQ(journal.GetDropped(), 100U);

    // The last step of each is known, all the same.
    auto* const running = journal.Begin("Stop", "component", "7", "Plant");
    const auto steps = journal.ReadToLatest();
    ASSERT_EQ(steps.size(), capacity + 50U);
    for (std::size_t i = capacity; i < steps.size(); ++i)
    {
        const bool isRunning = *steps[i].name == "7";
        EXPECT_STREQ(steps[i].step, isRunning ? "Stop" : "Start");
        EXPECT_EQ(steps[i].outcome, isRunning ? Outcome::Running : Outcome::Done);
    }
    journal.End(running, Outcome::Failed);
    EXPECT_EQ(
        std::count_if(steps.begin(), steps.end(), [](const auto& step) { return step.outcome == Outcome::Running; }),
        1);
    EXPECT_EQ(journal.GetDropped(), 101U);
}
