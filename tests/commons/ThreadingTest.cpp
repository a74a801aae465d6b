#include <Vela/System/Commons/Threading/AutoResetEvent.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>

using namespace Vela;
using namespace Vela::System::Commons::Threading;
using namespace std::chrono_literals;

TEST(AutoResetEvent, LetsOneWaiterPassForEachTimeItIsSet)
{
    AutoResetEvent event(true);
    EXPECT_TRUE(event.WaitOne(0ms));
    EXPECT_FALSE(event.WaitOne(1ms));
    event.Set();
    event.Set();
    event.WaitOne();
    EXPECT_FALSE(event.WaitOne(0ms));
    event.Set();
    event.Reset();
    EXPECT_FALSE(event.WaitOne(0ms));
}

TEST(AutoResetEvent, WakesAWaiterOnAnotherThread)
{
    AutoResetEvent ping(false);
    AutoResetEvent pong(false);
    const Thread thread("ping",
                        [&]
                        {
                            ping.WaitOne();
                            pong.Set();
                        });
    ping.Set();
    EXPECT_TRUE(pong.WaitOne(std::chrono::milliseconds::max()));
}

TEST(Thread, CarriesItsNameAndIsJoinedWhenReplaced)
{
    String name;
    bool isReplacedJoined = false;
    Thread thread("first", [&] { isReplacedJoined = true; });
    thread = Thread("a name beyond the limit",
                    [&]
                    {
                        char buffer[32] = {};
                        ::pthread_getname_np(::pthread_self(), buffer, sizeof(buffer));
                        name = buffer;
                    });
    EXPECT_TRUE(isReplacedJoined);
    thread.Join();
    EXPECT_EQ(name, "a name beyond t");
    EXPECT_FALSE(thread.IsJoinable());
}

TEST(WorkerThread, RepeatsAfterItsIdleTimeUntilItIsStopped)
{
    std::atomic<int> calls = 0;
    AutoResetEvent third(false);
    WorkerThread worker(
        "worker",
        [&]
        {
            if (++calls == 3)
            {
                third.Set();
            }
        },
        1ms);
    EXPECT_FALSE(worker.IsRunning());
    worker.Start();
    worker.Start();
    third.WaitOne();
    EXPECT_TRUE(worker.IsRunning());
    worker.Stop();
    EXPECT_FALSE(worker.IsRunning());
    EXPECT_GE(calls, 3);
}

TEST(WorkerThread, IsWokenAndStoppedFromALongWaitAndStartsAgain)
{
    AutoResetEvent called(false);
    WorkerThread worker(
        "worker", [&] { called.Set(); }, std::chrono::milliseconds::max());
    for (int round = 0; round < 2; ++round)
    {
        worker.Start();
        called.WaitOne();
        worker.Wake();
        called.WaitOne();
        worker.Stop();
        EXPECT_FALSE(called.WaitOne(0ms));
    }
    worker.Stop();
}
