#include "StartedProcess.hpp"

#include <Vela/System/Commons/Runtime/ProcessUsage.hpp>

#include <gtest/gtest.h>
#include <unistd.h>

#include <mutex>
#include <thread>
#include <vector>

using namespace Vela::System::Commons::Runtime;
using namespace std::chrono_literals;

TEST(ProcessUsage, FollowsMemoryThreadsAndTime)
{
    const auto before = ReadProcessUsage(::getpid());
    ASSERT_TRUE(before);

    std::vector<char> memory(32U << 20U, 'x');
    std::mutex mutex;
    mutex.lock();
    std::thread waiting([&] { const std::lock_guard lock(mutex); });
    // The figures are of whole ticks: it takes several to be seen.
    unsigned work = 0;
    auto after = ReadProcessUsage(::getpid());
    while (after && after->userTime + after->systemTime < before->userTime + before->systemTime + 50ms)
    {
        for (const char byte : memory)
        {
            work = work * 31 + static_cast<unsigned char>(byte);
        }
        after = ReadProcessUsage(::getpid());
    }
    mutex.unlock();
    waiting.join();

    ASSERT_TRUE(after) << work;
    EXPECT_EQ(after->threads, before->threads + 1);
    EXPECT_GE(after->residentBytes, before->residentBytes + (24U << 20U));
    EXPECT_LE(after->proportionalBytes, after->residentBytes + (1U << 20U));
    EXPECT_NE(std::string("RSD").find(after->state), std::string::npos) << after->state;
}

TEST(ProcessUsage, IsEmptyForAProcessThatIsGone)
{
    Vela::Testing::StartedProcess child("/bin/true", {});
    EXPECT_EQ(child.AwaitEnd(), 0);
    EXPECT_FALSE(ReadProcessUsage(child.GetId()));
    EXPECT_FALSE(ReadProcessUsage(0));
}
