// A main process with a child, in which one allocation after the other fails: settings, configuration, remoting on both
// of its sides, the loading of libraries, every step of the components, and all the way down. Whatever fails, the
// process comes to its end by itself and says what was wrong.
//
// An ordinary run takes a part of the ordinals; VELA_ENDURE=1 takes all.

#include "FailingAllocation.hpp"

#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>

#include <SystemFixture.hpp>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace Vela::Testing
{
namespace
{

/// A process that waits this long hangs.
constexpr unsigned patienceSeconds = 60;
constexpr const char* countTitle = "allocations: ";

/// Whether the stack in the output is that of the dynamic loader, which runs the initialisers of a library.
bool IsLoadersStack(const std::string& output)
{
#ifdef __arm__
    // Its code has no tables for the unwinder there: the stack seems to begin in the library.
    const std::size_t outermost = output.rfind("[0x");
    const std::size_t line = output.rfind('\n', outermost) + 1;
    return outermost != std::string::npos && output.substr(line, outermost - line).find(".so(+") != std::string::npos &&
           output.substr(line, outermost - line).find("/libc.so") == std::string::npos;
#else
    return output.find("/ld-linux") != std::string::npos;
#endif
}

/// One system at a time in a directory of its own.
class StarvedSystem : public SystemTest
{
public:
    StarvedSystem()
    {
        const std::string child = "binaryPath='" + TestSystem::GetBuiltFile("bin/Vela.System.Application") +
                                  "' args='--child=true --name=Left --loglevel=Error'";
        system.WriteSettings("<ProcessSettings singleProcess='false' startWaitTime='20s' stopWaitTime='2s'/>"
                             "<EnvironmentVariables><EnvironmentVariable name='PLANT' value='${TANK}/x'/>"
                             "<EnvironmentVariable name='TANK' value='1'/></EnvironmentVariables>");
        system.WriteConfig("<Processes><Process name='Left' " + child +
                           "/></Processes><Libraries><Library name='Recording' binaryPath='" +
                           TestSystem::GetBuiltFile("lib/libRecording.so") +
                           "'/></Libraries><Components><Component name='InMain' type='RecordingController' "
                           "library='Recording'/><Component name='InLeft' type='RecordingController' "
                           "library='Recording' process='Left'/></Components>");
        WriteScript("* PublishServices publish\nInMain Start attempt call InLeft sleep 0\n"
                    "InLeft Start attempt call InMain sleep 0\n");
    }

    void Start(long allocation)
    {
        ordinal = allocation;
        process = fork();
        if (process == 0)
        {
            std::exit(Live());
        }
    }

    [[nodiscard]] pid_t GetProcess() const
    {
        return process;
    }

    /// Empty when it ended as it must.
    [[nodiscard]] std::string Judge(int status) const
    {
        const std::string output = system.directory.Read("output");
        // A constructor or destructor of an object with static storage cannot fail without its process.
        if (IsLoadersStack(output) && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT)
        {
            return {};
        }
        const auto says = [&output](const char* text)
        {
            return output.find(text) != std::string::npos;
        };
        const bool isFailure = WIFEXITED(status) && WEXITSTATUS(status) == 1;
        const bool isExplained = status == 0 || (isFailure && says("bad_alloc"));
        // What fails before the set-up, or when all components and processes are down, is no case for a record.
        const bool isRecordDue =
            isFailure && says(says(isUp) ? "while shutting down the system" : "Fatal error occurs in application");
        const std::string record = system.TakeCrashRecord();
        const bool isRecordRight = isRecordDue ? record.starts_with("reason: ") : record == "no record";
        const std::string leftovers = system.FindLeftovers();
        if (isExplained && isRecordRight && leftovers.empty())
        {
            return {};
        }
        return "allocation " + std::to_string(ordinal) + " failed, status " + std::to_string(status) +
               ", left behind '" + leftovers + "' and " + record + "\n" + output;
    }

    [[nodiscard]] long GetCount() const
    {
        const std::string output = system.directory.Read("output");
        const std::size_t found = output.find(countTitle);
        return found == std::string::npos ? 0 : std::stol(output.substr(found + std::string(countTitle).size()));
    }

private:
    /// Ends as soon as it is up.
    class Host : public System::Kiro::Internal::MainApplicationBase
    {
    public:
        using MainApplicationBase::MainApplicationBase;

    protected:
        std::int32_t Run() override
        {
            return 0;
        }
    };

    void TestBody() override
    {
    }

    [[nodiscard]] int Live() const
    {
        alarm(patienceSeconds);
        const int output = open((system.directory / "output").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        for (const auto& [variable, value] : system.environment)
        {
            setenv(variable.c_str(), value.c_str(), 1);
        }
        std::filesystem::current_path(system.directory.GetPath());
        std::string name = "test";
        std::array<char*, 2> arguments{name.data(), nullptr};
        FailingAllocation::Arm(ordinal);
        int exitCode = 1;
        try
        {
            Host host("MainProcess", true, false, true);
            exitCode = host.Main(1, arguments.data(), System::Commons::Diagnostics::LogLevel::None);
            exitCode = host.Dispose() ? exitCode : 1;
        }
        catch (const std::exception& exception)
        {
            std::fprintf(stderr, "%s\n", exception.what());
        }
        std::fprintf(stderr, "%s%ld\n", countTitle, FailingAllocation::GetCount());
        return exitCode;
    }

    long ordinal = 0;
    pid_t process = -1;
};

TEST(Allocation, NoFailureLeavesAProcessThatCrashesOrHangs)
{
    StarvedSystem undisturbed;
    undisturbed.Start(0);
    int status = 0;
    waitpid(undisturbed.GetProcess(), &status, 0);
    ASSERT_EQ(status, 0) << undisturbed.Judge(status);
    const long count = undisturbed.GetCount();
    ASSERT_GT(count, 1000);

    constexpr long ordinaryRuns = 80;
    const long stride = std::getenv("VELA_ENDURE") == nullptr ? count / ordinaryRuns : 1;
    constexpr std::size_t runsAtATime = 4;
    std::map<pid_t, std::unique_ptr<StarvedSystem>> runs;
    constexpr int runsPerReport = 100;
    int ended = 0;
    int failures = 0;
    for (long ordinal = 1; ordinal <= count || !runs.empty();)
    {
        if (ordinal <= count && runs.size() < runsAtATime)
        {
            auto run = std::make_unique<StarvedSystem>();
            run->Start(ordinal);
            runs[run->GetProcess()] = std::move(run);
            ordinal += stride;
            continue;
        }
        const pid_t process = waitpid(-1, &status, 0);
        const std::string failure = runs.at(process)->Judge(status);
        runs.erase(process);
        if (++ended % runsPerReport == 0)
        {
            std::cerr << ended << " of " << count / stride << " runs\n";
        }
        if (!failure.empty() && ++failures <= 20)
        {
            ADD_FAILURE() << failure;
        }
    }
    std::cout << "every " << stride << ". of " << count << " allocations has failed once\n";
    EXPECT_EQ(failures, 0);
}

} // namespace
} // namespace Vela::Testing
