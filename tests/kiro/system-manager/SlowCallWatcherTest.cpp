#include "CapturedLog.hpp"
#include "ThreadRest.hpp"

#include <Sm/LifecycleGate.hpp>
#include <Sm/SlowCallWatcher.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace Vela::Testing;
using namespace Vela::System::Kiro::Internal::Sm;
using namespace std::chrono_literals;

namespace
{

/// Blocks until the log has that many warnings.
std::vector<std::string> AwaitWarnings(const CapturedLog& log, std::size_t count)
{
    auto warnings = log.GetLines("Warning");
    while (warnings.size() < count)
    {
        std::this_thread::yield();
        warnings = log.GetLines("Warning");
    }
    return warnings;
}

} // namespace

TEST(SlowCallWatcher, WarnsOfACallThatDoesNotReturnAndAgainAtDoublingIntervals)
{
    const CapturedLog log;
    std::mutex mutex;
    std::vector<std::string> hungProcesses;
    SlowCallWatcher watcher(100ms,
                            [&](const std::string& process)
                            {
                                const std::lock_guard lock(mutex);
                                hungProcesses.push_back(process);
                            });
    const std::string component = "pump";
    const std::string process = "Control";
    {
        const SlowCallWatcher::Watch quick(watcher, "InitializeComponent", "component", component, process);
    }
    {
        const SlowCallWatcher::Watch slow(watcher, "StartComponent", "component", component, process);
        const auto start = std::chrono::steady_clock::now();
        const auto warnings = AwaitWarnings(log, 3);
        EXPECT_GE(std::chrono::steady_clock::now() - start, 350ms);
        for (const auto& warning : warnings)
        {
            EXPECT_THAT(warning, testing::StartsWith("Warning: StartComponent of component 'pump' in process 'Control' "
                                                     "has not returned after "));
        }
    }
    // A later call is watched from its own start on, although the last one was in a long interval.
    const SlowCallWatcher::Watch other(watcher, "LoadLibrary", "library", component, process);
    EXPECT_THAT(AwaitWarnings(log, 4).back(), testing::HasSubstr("LoadLibrary of library 'pump'"));
    // The second warning of that call comes when its process has been reported.
    AwaitWarnings(log, 5);
    const std::lock_guard lock(mutex);
    EXPECT_THAT(hungProcesses, testing::ElementsAre("Control", "Control")) << "once for each call";
}

TEST(SlowCallWatcher, WarnsOfACallBehindOneThatWasOverBeforeTheWatcherWasAwake)
{
    const std::string name = "pump";
    for (int round = 0; round < 50; ++round)
    {
        const CapturedLog log;
        SlowCallWatcher watcher(1ms);
        AwaitRest(getpid(), "SlowCallWatcher");
        {
            const SlowCallWatcher::Watch quick(watcher, "LoadConfig", "component", name, name);
        }
        std::this_thread::yield();
        AwaitRest(getpid(), "SlowCallWatcher");
        const SlowCallWatcher::Watch slow(watcher, "StartComponent", "component", name, name);
        // On a busy machine the quick call may have been a slow one too.
        for (std::size_t count = 1; AwaitWarnings(log, count).back().find("StartComponent") == std::string::npos;
             ++count)
        {
        }
    }
}

TEST(SlowCallWatcher, WatchesNothingWithoutALimit)
{
    const CapturedLog log;
    SlowCallWatcher watcher(0ms);
    const std::string name = "pump";
    const SlowCallWatcher::Watch watch(watcher, "StartComponent", "component", name, name);
    EXPECT_TRUE(log.GetLines().empty());
}

TEST(LifecycleGate, AdmitsOneAndRefusesAlsoItsOwnHolder)
{
    LifecycleGate gate;
    std::atomic<bool> hasEntered = false;
    std::unique_lock holder(gate);
    EXPECT_FALSE(gate.try_lock());
    std::thread waiting(
        [&]
        {
            const std::lock_guard lock(gate);
            hasEntered = true;
        });
    EXPECT_FALSE(hasEntered);
    holder.unlock();
    waiting.join();
    EXPECT_TRUE(hasEntered);
    EXPECT_TRUE(gate.try_lock());
    gate.unlock();
}
