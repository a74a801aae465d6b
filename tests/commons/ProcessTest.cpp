#include "Emulation.hpp"
#include "TemporaryDirectory.hpp"
#include "TestSystem.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

using namespace Vela;
using namespace Vela::System::Commons;
using namespace Vela::System::Commons::Runtime;
using Vela::Testing::IsEmulated;
using Vela::Testing::TemporaryDirectory;

namespace
{

constexpr int patience = 60'000;

String GetHelper()
{
    return Testing::TestSystem::GetBuiltFile("tests/test-commons-helper");
}

bool HasLine(const String& report, const String& line)
{
    return ("\n" + report).find("\n" + line + "\n") != String::npos;
}

/// Waits until a file of this name has been moved into a directory.
void AwaitFile(const TemporaryDirectory& directory, const String& name)
{
    const UniqueFd watch(::inotify_init1(IN_CLOEXEC));
    ASSERT_GE(::inotify_add_watch(watch.Get(), directory.GetPath().c_str(), IN_MOVED_TO), 0);
    while (!Io::File::Exists(directory / name))
    {
        pollfd changed{watch.Get(), POLLIN, 0};
        ASSERT_GT(::poll(&changed, 1, patience), 0) << "no report came";
        std::array<char, 4096> events{};
        ASSERT_GT(::read(watch.Get(), events.data(), events.size()), 0);
    }
}

/// A pipe by name that the grandchildren of a test hold open: it ends when the last of them is gone.
class LifeLine
{
public:
    explicit LifeLine(const TemporaryDirectory& directory)
        : path(directory / "fifo")
    {
        if (::mkfifo(path.c_str(), 0600) == 0)
        {
            reader = UniqueFd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        }
    }

    /// What comes next; empty when everybody is gone.
    [[nodiscard]] String Read() const
    {
        pollfd readable{reader.Get(), POLLIN, 0};
        std::array<char, 64> buffer{};
        if (::poll(&readable, 1, patience) <= 0)
        {
            return "nothing came";
        }
        const auto count = ::read(reader.Get(), buffer.data(), buffer.size());
        return count <= 0 ? "" : String(buffer.data(), static_cast<std::size_t>(count));
    }

    const String path;

private:
    UniqueFd reader;
};

} // namespace

TEST(Arguments, AreSplitByTheQuotingRulesOfTheShell)
{
    const std::pair<const char*, std::vector<String>> cases[] = {
        {"", {}},
        {"  \t ", {}},
        {"--child=true  --name=A ", {"--child=true", "--name=A"}},
        {R"("a b" 'c "d"' e\ f)", {"a b", R"(c "d")", "e f"}},
        {R"(--x="a \"b\" \\ \n")", {R"(--x=a "b" \ \n)"}},
        {R"('' "")", {"", ""}},
        {R"('a\'b)", {R"(a\b)"}},
        {R"(a\)", {R"(a\)"}},
        {"$HOME *", {"$HOME", "*"}},
    };
    for (const auto& [text, expected] : cases)
    {
        EXPECT_EQ(SplitArguments(text), expected) << text;
    }
    EXPECT_THROW(SplitArguments("a 'b"), ArgumentException);
    EXPECT_THROW(SplitArguments("a \"b\\\""), ArgumentException);
}

TEST(Arguments, AreQuotedSoThatSplittingGivesThemBack)
{
    EXPECT_EQ(QuoteArgument("/opt/x.settings"), "/opt/x.settings");
    EXPECT_EQ(QuoteArgument("/opt/my x"), "\"/opt/my x\"");
    for (const char* text : {"", "a b", "\"", "'", "\\", "\\\"", "a\nb", "'a' \"b\" \\\\", "$x"})
    {
        EXPECT_EQ(SplitArguments(QuoteArgument(text)), std::vector<String>{text});
    }
}

TEST(Process, GivesItsChildACleanStart)
{
    const TemporaryDirectory directory;
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipeBefore = ::signal(SIGPIPE, SIG_IGN);
    const int leaked = ::open("/dev/null", O_RDONLY);
    cpu_set_t all;
    cpu_set_t one;
    ASSERT_EQ(::sched_getaffinity(0, sizeof(all), &all), 0);
    CPU_ZERO(&one);
    for (std::size_t processor = 0; CPU_COUNT(&one) == 0; ++processor)
    {
        if (CPU_ISSET(processor, &all))
        {
            CPU_SET(processor, &one);
        }
    }
    ::sched_setaffinity(0, sizeof(one), &one);

    Process process;
    process.Start(directory.GetPath(), GetHelper(), "report report.txt 'two words'",
                  {.environment = {{"VELA_TEST_VARIABLE", "given"}}});
    ::sched_setaffinity(0, sizeof(all), &all);
    ::close(leaked);
    ::signal(SIGPIPE, pipeBefore);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);

    ASSERT_TRUE(process.WaitForExit(-1));
    EXPECT_EQ(process.GetExit().ToString(), "exit code 0");
    const String report = directory.Read("report.txt");
    for (const auto& line : {String("group 1"), String("session 0"), "directory " + directory.GetPath().string(),
                             String("stdin /dev/null"), String("variable given"), String("processors 1"),
                             "parent " + std::to_string(::getpid()), String("argument <two words>")})
    {
        EXPECT_TRUE(HasLine(report, line)) << line << " is missing in:\n" << report;
    }
    EXPECT_EQ(report.find("descriptor"), String::npos) << report;
    EXPECT_EQ(report.find("signal"), String::npos) << "blocked or ignored in:\n" << report;
}

TEST(Process, HoldsSignalsUntilItsChildCanTakeThem)
{
    for (const bool holds : {false, true})
    {
        ProcessStartOptions options;
        options.holdsSignals = holds;
        Process process;
        process.Start("", "/bin/sh", "-c 'kill -INT $$; kill -TERM $$; exit 7'", options);
        ASSERT_TRUE(process.WaitForExit(-1));
        EXPECT_EQ(process.GetExit().ToString(), holds ? "exit code 7" : "signal 2 (Interrupt)");
    }
}

TEST(Process, TellsHowItsChildEndedAndReapsItWithItself)
{
    pid_t id = 0;
    {
        Process process;
        EXPECT_FALSE(process.IsStarted());
        EXPECT_FALSE(process.HasExited());
        EXPECT_FALSE(process.WaitForExit(0));
        process.Kill();
        process.Start("", "sh", "-c 'exit 7'");
        id = process.GetId();
        pollfd exited{process.GetExitDescriptor(), POLLIN, 0};
        EXPECT_EQ(::poll(&exited, 1, patience), 1);
        EXPECT_TRUE(process.HasExited());
        EXPECT_EQ(process.GetExit().ToString(), "exit code 7");
        EXPECT_EQ(::kill(id, 0), 0) << "reaped although its group might still be needed";
        EXPECT_THROW(process.Start("", "sh", "-c 'exit 0'"), InvalidOperationException);
    }
    EXPECT_EQ(::waitpid(id, nullptr, WNOHANG), -1);
}

TEST(Process, WaitsNoLongerThanItIsAllowedTo)
{
    Process process;
    process.Start("", "sh", "-c 'while :; do sleep 100; done'");
    EXPECT_FALSE(process.WaitForExit(1));
    EXPECT_FALSE(process.HasExited());
    process.Kill();
    EXPECT_TRUE(process.WaitForExit(0));
    EXPECT_EQ(process.GetExit().ToString(), "signal 9 (Killed)");
    process.Kill();
}

TEST(Process, EndsItsWholeGroupWhenKilled)
{
    for (const char* end : {"stay", "exit", "crash"})
    {
        const TemporaryDirectory directory;
        const LifeLine line(directory);
        Process process;
        process.Start("", GetHelper(), "family " + line.path + " " + end);
        EXPECT_EQ(line.Read(), "born\n") << end;
        if (String(end) != "stay")
        {
            EXPECT_TRUE(process.WaitForExit(patience));
        }
        process.Kill();
        EXPECT_EQ(line.Read(), "") << end;
        EXPECT_EQ(process.GetExit().ToString(), String(end) == "exit" ? "exit code 3" : "signal 9 (Killed)");
        EXPECT_EQ(::waitpid(process.GetId(), nullptr, WNOHANG), -1) << "not reaped";
    }
}

TEST(Process, SaysWhyItCannotStart)
{
    const TemporaryDirectory directory;
    const String noProgram = directory.Write("text", "");
    const auto getError = [](const String& workingDirectory, const String& file)
    {
        try
        {
            Process process;
            process.Start(workingDirectory, file, "");
        }
        catch (const Exception& exception)
        {
            return exception.GetMessage();
        }
        return String();
    };
    EXPECT_EQ(getError("", "/no/such"), "Could not start process '/no/such': No such file or directory");
    if (!IsEmulated())
    {
        // Looked for in the child, which shares its memory with the parent: an emulated one has a copy, where its
        // failure stays.
        EXPECT_EQ(getError("", "no-such-program"),
                  "Could not start process 'no-such-program': No such file or directory");
    }
    EXPECT_EQ(getError("", noProgram), "Could not start process '" + noProgram + "': Permission denied");
    EXPECT_EQ(getError("/no/such", "sh"), "Could not start process 'sh': working directory '/no/such' does not exist");
    EXPECT_EQ(getError("", ""), "Value cannot be null.");
    EXPECT_THROW(Process::StartDaemon("", "/no/such", ""), Exception);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a failed start left a child";
}

TEST(Process, StartsADaemonThatBelongsToNobody)
{
    const TemporaryDirectory directory;
    Process::StartDaemon(directory.GetPath(), GetHelper(), "report report.txt ");
    AwaitFile(directory, "report.txt");
    const String report = directory.Read("report.txt");
    for (const char* line : {"session 1", "stdin /dev/null", "stdout /dev/null", "argument <report.txt>"})
    {
        EXPECT_TRUE(HasLine(report, line)) << line << " is missing in:\n" << report;
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "the daemon is our child";
}
