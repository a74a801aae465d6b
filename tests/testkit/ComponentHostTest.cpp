#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Testing/ComponentHost.hpp>
#include <Vela/System/Kiro/Testing/HostedComponent.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

namespace Vela::System::Kiro::Testing
{

using Commons::Environment;
using Commons::Diagnostics::LogLevel;

namespace
{

struct Speaker : private Commons::Diagnostics::Loggable<Speaker>
{
    static void Speak()
    {
        log.Warning("The first line\n  and the second: \x1B.");
        log.Error("Too hot: 90 °C");
    }
};

class LevelPayload : public Nm::NotificationPayload
{
public:
    static constexpr auto Fields()
    {
        return std::tuple(Nm::PayloadField("level", &LevelPayload::level));
    }

    double level = 0;
};

void Send(const String& name, double level)
{
    LevelPayload payload;
    payload.level = level;
    Nm::NotificationRegistration<LevelPayload>(name, "test", Nm::Severity::Warning).Send(payload);
}

} // namespace

TEST(ComponentHostTest, LeavesNothingBehind)
{
    sigset_t before{};
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    String directory;
    for (const String name : {"First", "Second"})
    {
        const ComponentHost host({.processName = name,
                                  .settings = "<EnvironmentVariables><EnvironmentVariable name=\"ONLY_" + name +
                                              "\" value=\"yes\"/>"
                                              "</EnvironmentVariables>"});
        directory = host.GetDirectory();
        EXPECT_EQ(Environment::GetVariableValueOr("ONLY_" + name, ""), "yes");
        EXPECT_EQ(Environment::GetVariableValueOr("VELA_PATH_RUNTIME_DIR", ""), directory + "/run");
        EXPECT_NE(std::getenv(("ONLY_" + name).c_str()), nullptr);
        EXPECT_TRUE(std::filesystem::exists(host.WriteFile("a/b", "text")));
    }
    EXPECT_EQ(std::getenv("ONLY_First"), nullptr);
    EXPECT_EQ(std::getenv("VELA_PATH_RUNTIME_DIR"), nullptr);
    EXPECT_FALSE(std::filesystem::exists(directory));
    sigset_t after{};
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&after, SIGTERM), sigismember(&before, SIGTERM));
}

TEST(ComponentHostTest, SaysWhyItDoesNotComeUp)
{
    try
    {
        const ComponentHost host({.settings = "<EnvironmentVariables>"});
        ADD_FAILURE() << "The settings are malformed.";
    }
    catch (const Exception& exception)
    {
        EXPECT_NE(String(exception.what()).find("Host.kiro.settings"), String::npos) << exception.what();
    }
    const ComponentHost next;
    EXPECT_THROW(static_cast<void>(next.WriteFile("host.log/below", "")), Exception);
}

TEST(ComponentHostTest, ReadsBackTheLog)
{
    const ComponentHost host;
    Speaker::Speak();
    const std::vector<LogMessage> messages = host.GetLog(LogLevel::Warning);
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].level, LogLevel::Warning);
    EXPECT_NE(messages[0].category.find("Speaker"), String::npos);
    EXPECT_EQ(messages[0].text, "The first line\n  and the second: \\x1B.");
    EXPECT_EQ(messages[1].text, "Too hot: 90 °C");
    EXPECT_EQ(host.GetLog(LogLevel::Error).size(), 1U);
    EXPECT_TRUE(host.HasLogged("Too hot"));
    EXPECT_FALSE(host.HasLogged("Too cold"));
}

TEST(ComponentHostTest, AwaitsWhatThreadsLogAndSend)
{
    const ComponentHost host({.patience = std::chrono::seconds(60)});
    std::jthread thread(
        []
        {
            Send("Plant.Level", 1.5);
            Speaker::Speak();
        });
    EXPECT_EQ(host.AwaitLog("Too hot").level, LogLevel::Error);
    EXPECT_EQ(host.AwaitNotification("Plant.Level").GetPayload<LevelPayload>().level, 1.5);
}

TEST(ComponentHostTest, GivesUpAfterAWhileAndSaysWhatThereWas)
{
    const ComponentHost host({.patience = std::chrono::seconds(0)});
    Speaker::Speak();
    try
    {
        static_cast<void>(host.AwaitLog("Too cold"));
        ADD_FAILURE() << "Nothing like that was logged.";
    }
    catch (const Exception& exception)
    {
        EXPECT_NE(String(exception.what()).find("Too hot"), String::npos);
    }
    EXPECT_THROW(static_cast<void>(host.AwaitNotification("Plant.Level")), Exception);
}

TEST(ComponentHostTest, ReadsBackNotificationsInTheirOrder)
{
    const ComponentHost host;
    Send("Plant.Level", 1);
    Send("Plant.Pressure", 2);
    Send("Plan", 3);
    Send("Plant.Level", 4);
    const auto all = host.GetNotifications();
    ASSERT_EQ(all.size(), 4U);
    EXPECT_EQ(all[3].GetPayload<LevelPayload>().level, 4);
    EXPECT_EQ(all[0].process, "TestProcess");
    EXPECT_EQ(host.GetNotifications("Plant.*").size(), 3U);
    EXPECT_EQ(host.GetNotifications("Plan").size(), 1U);
    EXPECT_TRUE(host.GetNotifications("Alarm*").empty());
}

TEST(ComponentHostTest, EndsTheTestProgramOnASignal)
{
    int ends[2] = {};
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        const ComponentHost host;
        const String directory = host.GetDirectory();
        static_cast<void>(::write(ends[1], directory.data(), directory.size()));
        ::close(ends[1]);
        for (;;)
        {
            ::pause();
        }
    }
    ::close(ends[1]);
    String directory(4096, '\0');
    const ssize_t size = ::read(ends[0], directory.data(), directory.size());
    ::close(ends[0]);
    ASSERT_GT(size, 0);
    directory.resize(static_cast<std::size_t>(size));
    ::kill(child, SIGTERM);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGTERM) << status;
    EXPECT_FALSE(std::filesystem::exists(directory));
}

} // namespace Vela::System::Kiro::Testing
