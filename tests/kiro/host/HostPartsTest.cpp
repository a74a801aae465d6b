#include <Host/GuardedSteps.hpp>
#include <Host/ProcessorBinding.hpp>
#include <Host/ShutdownRequest.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/Internal/ApplicationSetupKind.hpp>
#include <Vela/System/Kiro/Internal/ProcessKind.hpp>

#include <gtest/gtest.h>
#include <sched.h>

#include <sstream>
#include <thread>

namespace Vela::System::Kiro::Internal
{
namespace
{

TEST(ShutdownRequest, FlagsFollowTheKindOfRequest)
{
    struct Case
    {
        void (ShutdownRequest::*request)();
        bool isRestart;
        bool isShutdown;
    };
    for (const Case& row : {Case{&ShutdownRequest::RequestRestart, true, true},
                            Case{&ShutdownRequest::RequestSystemShutdown, false, false},
                            Case{&ShutdownRequest::RequestProcessShutdown, false, true}})
    {
        ShutdownRequest request;
        request.CreateEvent();
        (request.*row.request)();
        request.Wait();
        EXPECT_EQ(request.IsRestartRequested(), row.isRestart);
        EXPECT_EQ(request.IsShutdownRequested(), row.isShutdown);
        EXPECT_TRUE(request.IsEnding());
    }
}

TEST(ShutdownRequest, LaterShutdownWithdrawsARestart)
{
    ShutdownRequest request;
    request.RequestRestart();
    request.RequestSystemShutdown();
    EXPECT_FALSE(request.IsRestartRequested());
    EXPECT_TRUE(request.IsShutdownRequested());
    EXPECT_TRUE(request.IsSystemShutdownLast());

    request.RequestRestart();
    request.RequestProcessShutdown();
    EXPECT_FALSE(request.IsSystemShutdownLast()) << "a process is told to end for a restart, too";
}

TEST(ShutdownRequest, IsKeptUntilTheEventExists)
{
    ShutdownRequest request;
    EXPECT_THROW(request.Wait(), InvalidOperationException);
    std::thread([&] { request.RequestSystemShutdown(); }).join();
    request.CreateEvent();
    request.Wait();
    request.ReleaseEvent();
    request.RequestSystemShutdown();
    EXPECT_THROW(request.Wait(), InvalidOperationException);
}

TEST(ShutdownRequest, ConsoleRequestDoesNotSignalTheEvent)
{
    ShutdownRequest request;
    request.RequestConsoleShutdown();
    EXPECT_TRUE(request.IsShutdownRequested());
    EXPECT_FALSE(request.IsEnding());
}

TEST(GuardedSteps, TriesAllAndKeepsTheFirstFailure)
{
    GuardedSteps steps;
    std::string trace;
    steps.Run([&] { trace += "a"; });
    EXPECT_NO_THROW(steps.ThrowFirstFailure());
    steps.Run([] { throw InvalidOperationException("first"); });
    steps.Run([&] { trace += "b"; });
    steps.Run([] { throw Exception("second"); });
    EXPECT_EQ(trace, "ab");
    try
    {
        steps.ThrowFirstFailure();
        FAIL() << "nothing thrown";
    }
    catch (const InvalidOperationException& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "first");
    }
}

std::string GetAffinity()
{
    cpu_set_t set;
    EXPECT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
    std::string text;
    for (unsigned processor = 0; processor < CPU_SETSIZE; ++processor)
    {
        text += CPU_ISSET(processor, &set) ? std::to_string(processor) + " " : "";
    }
    return text;
}

TEST(ProcessorBinding, BindsAndLetsActionsRunAsBefore)
{
    // On a thread of its own, so that the other tests keep their processors.
    std::thread(
        []
        {
            const std::string before = GetAffinity();
            const int first = std::stoi(before);
            ProcessorBinding binding;
            std::string inside;
            binding.RunUnbound([&] { inside = GetAffinity(); });
            EXPECT_EQ(inside, before);

            binding.Bind(first);
            EXPECT_EQ(GetAffinity(), std::to_string(first) + " ");
            binding.RunUnbound([&] { inside = GetAffinity(); });
            EXPECT_EQ(inside, before);
            EXPECT_EQ(GetAffinity(), std::to_string(first) + " ");
            EXPECT_THROW(binding.RunUnbound([] { throw Exception("failed"); }), Exception);
            EXPECT_EQ(GetAffinity(), std::to_string(first) + " ");
        })
        .join();
}

TEST(ProcessorBinding, LeavesTheProcessWhereItIsWhenTheProcessorIsUnknown)
{
    const std::string before = GetAffinity();
    for (const int processor : {CPU_SETSIZE - 1, CPU_SETSIZE, 2'000'000'000, -2})
    {
        ProcessorBinding binding;
        binding.Bind(processor);
        EXPECT_EQ(GetAffinity(), before) << processor;
    }
}

TEST(ApplicationSetupKind, PrintsAndParsesByName)
{
    std::stringstream stream;
    stream << ApplicationSetupKind::SystemConfigurationManager << ' ' << ProcessKind::Child;
    EXPECT_EQ(stream.str(), "SystemConfigurationManager Child");
    auto kind = ApplicationSetupKind::None;
    auto process = ProcessKind::None;
    stream >> kind >> process;
    EXPECT_EQ(kind, ApplicationSetupKind::SystemConfigurationManager);
    EXPECT_EQ(process, ProcessKind::Child);
}

TEST(ApplicationSetupKind, SystemConfigurationManagerNeedsBothItsBits)
{
    using enum ApplicationSetupKind;
    EXPECT_FALSE(Contains(static_cast<ApplicationSetupKind>(16), SystemConfigurationManager));
    EXPECT_FALSE(Contains(ProcessManager | SystemManager, SystemConfigurationManager));
    EXPECT_TRUE(Contains(SystemConfigurationManager, ProcessManager));
}

} // namespace
} // namespace Vela::System::Kiro::Internal
