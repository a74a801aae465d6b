#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>
#include <Vela/System/Commons/Diagnostics/ThreadStacks.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>

using namespace Vela;
using namespace Vela::System::Commons::Diagnostics;
using Vela::System::Commons::Threading::Thread;

#ifndef __SANITIZE_THREAD__
// That sanitizer holds signals back until the thread makes certain calls.
namespace
{

/// A thread that rests in a read until its pipe is closed.
class RestingThread
{
public:
    explicit RestingThread(const String& name, bool isDeaf = false)
        : thread(name,
                 [this, name, isDeaf]
                 {
                     if (isDeaf)
                     {
                         sigset_t all;
                         sigfillset(&all);
                         pthread_sigmask(SIG_BLOCK, &all, nullptr);
                     }
                     const Breadcrumb breadcrumb("Rest", "component", name);
                     id = static_cast<pid_t>(::syscall(SYS_gettid));
                     char character = 0;
                     result = ::read(pipe[0], &character, 1);
                 })
    {
        while (id == 0)
        {
            std::this_thread::yield();
        }
    }

    RestingThread(const RestingThread&) = delete;
    RestingThread& operator=(const RestingThread&) = delete;

    ~RestingThread()
    {
        ::close(pipe[1]);
        thread.Join();
        EXPECT_EQ(result, 0) << "the read was disturbed";
        ::close(pipe[0]);
    }

    [[nodiscard]] ThreadStack Find(const std::vector<ThreadStack>& stacks) const
    {
        const auto found =
            std::find_if(stacks.begin(), stacks.end(), [this](const ThreadStack& stack) { return stack.id == id; });
        return found == stacks.end() ? ThreadStack() : *found;
    }

private:
    const std::array<int, 2> pipe = []
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        return ends;
    }();
    std::atomic<pid_t> id{0};
    std::atomic<ssize_t> result{-1};
    Thread thread;
};

} // namespace

TEST(ThreadStacks, ShowWhereEachThreadIsAndForWhomAndDisturbNone)
{
    const RestingThread first("First");
    const RestingThread second("Second");
    for (int round = 0; round < 5; ++round)
    {
        const auto stacks = ThreadStacks::Collect();
        for (const auto& [thread, name] : {std::pair{&first, "First"}, std::pair{&second, "Second"}})
        {
            const ThreadStack stack = thread->Find(stacks);
            EXPECT_EQ(stack.name, name);
            EXPECT_EQ(stack.activity, "Rest of component '" + String(name) + "'");
            EXPECT_TRUE(std::any_of(stack.frames.begin(), stack.frames.end(),
                                    [](const String& frame) { return frame.find("test-commons+0x") != String::npos; }))
                << testing::PrintToString(stack.frames);
        }
        const auto isOwn = [](const ThreadStack& stack)
        {
            return stack.id == ::getpid();
        };
        EXPECT_TRUE(std::none_of(stacks.begin(), stacks.end(), isOwn));
    }
}

TEST(ThreadStacks, DoNotWaitForAThreadThatHoldsTheSignalBack)
{
    const RestingThread deaf("Deaf", true);
    const RestingThread other("Other");
    const auto stacks = ThreadStacks::Collect();
    EXPECT_EQ(deaf.Find(stacks).name, "Deaf");
    EXPECT_TRUE(deaf.Find(stacks).frames.empty());
    EXPECT_FALSE(other.Find(stacks).frames.empty());
}
#endif
