#include "Emulation.hpp"
#include "StartedProcess.hpp"

#include <Vela/System/Commons/Runtime/ProcessUsage.hpp>

#include <gtest/gtest.h>
#include <unistd.h>

#include <mutex>
#include <thread>
#include <vector>

using namespace Vela::System::Commons::Runtime;
using namespace std::chrono_literals;
using Vela::Testing::StartedProcess;

TEST(ProcessUsage, FollowsTheTimeOfAnotherProcess)
{
    StartedProcess child("/bin/sh", {"-c", "while :; do :; done"});
    const auto deadline = std::chrono::steady_clock::now() + StartedProcess::patience;
    auto usage = ReadProcessUsage(child.GetId());
    while (usage && usage->userTime + usage->systemTime < 50ms && std::chrono::steady_clock::now() < deadline)
    {
        std::this_thread::yield();
        usage = ReadProcessUsage(child.GetId());
    }
    ASSERT_TRUE(usage);
    EXPECT_GE(usage->userTime + usage->systemTime, 50ms);
    EXPECT_GE(usage->threads, 1U);
    EXPECT_GT(usage->residentBytes, 0U);
    EXPECT_NE(std::string("RSD").find(usage->state), std::string::npos) << usage->state;
}

TEST(ProcessUsage, FollowsOwnMemoryAndThreads)
{
    // A sanitizer starts a thread of its own beside the first one.
    std::thread([] {}).join();
    const auto before = ReadProcessUsage(::getpid());
    ASSERT_TRUE(before);
    if (Vela::Testing::IsEmulated())
    {
        // The emulator answers for the process that it runs, with hardly any figure.
        return;
    }
    const std::vector<char> memory(32U << 20U, 'x');
    std::mutex mutex;
    mutex.lock();
    std::thread waiting([&] { const std::lock_guard lock(mutex); });
    const auto after = ReadProcessUsage(::getpid());
    mutex.unlock();
    waiting.join();

    ASSERT_TRUE(after);
    EXPECT_EQ(after->threads, before->threads + 1);
    EXPECT_GE(after->residentBytes, before->residentBytes + (24U << 20U));
    EXPECT_LE(after->proportionalBytes, after->residentBytes + (1U << 20U));
}

TEST(ProcessUsage, IsEmptyForAProcessThatIsGone)
{
    StartedProcess child("/bin/true", {});
    EXPECT_EQ(child.AwaitEnd(), 0);
    EXPECT_FALSE(ReadProcessUsage(child.GetId()));
    EXPECT_FALSE(ReadProcessUsage(0));
}
