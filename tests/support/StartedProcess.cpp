#include "StartedProcess.hpp"

#include "ExecutionTexts.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace Vela::Testing
{

namespace
{

using Clock = std::chrono::steady_clock;

void Check(int error, const std::string& step)
{
    if (error != 0)
    {
        throw std::runtime_error(step + ": " + std::strerror(error));
    }
}

} // namespace

StartedProcess::StartedProcess(const std::string& executable, const std::vector<std::string>& arguments,
                               const std::map<std::string, std::string>& environment,
                               const std::string& workingDirectory, int standardInput)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
    {
        Check(errno, "pipe");
    }
    pipe = ends[0];

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    if (standardInput >= 0)
    {
        posix_spawn_file_actions_adddup2(&actions, standardInput, STDIN_FILENO);
    }
    else
    {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    if (!workingDirectory.empty())
    {
        posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t noSignals;
    sigemptyset(&noSignals);
    posix_spawnattr_setsigmask(&attributes, &noSignals);
    // Tests that run a host in their own process have it ignored.
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &brokenPipe);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    const int error = posix_spawn(&pid, executable.c_str(), &actions, &attributes,
                                  ExecutionTexts::MakeCommand(executable, arguments).Get(),
                                  ExecutionTexts::MakeEnvironment(environment).Get());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(ends[1]);
    if (error != 0)
    {
        close(pipe);
        Check(error, "Cannot start " + executable);
    }
}

StartedProcess::~StartedProcess()
{
    if (!isReaped)
    {
        kill(-pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    close(pipe);
}

std::string StartedProcess::AwaitLine(const std::string& text)
{
    const auto deadline = Clock::now() + patience;
    for (;;)
    {
        const std::size_t found = output.find(text, searchedUpTo);
        const std::size_t lineEnd = found == std::string::npos ? found : output.find('\n', found);
        if (lineEnd != std::string::npos)
        {
            searchedUpTo = found + text.size();
            const std::size_t before = output.rfind('\n', found);
            const std::size_t lineBegin = before == std::string::npos ? 0 : before + 1;
            return output.substr(lineBegin, lineEnd - lineBegin);
        }
        if (ReadOutput(deadline) == Input::End)
        {
            Fail("The output ended without '" + text + "'");
        }
    }
}

bool StartedProcess::HasOutput(const std::string& text) const
{
    return output.find(text) != std::string::npos;
}

int StartedProcess::CountOutput(const std::string& text) const
{
    int count = 0;
    for (std::size_t found = output.find(text); found != std::string::npos; found = output.find(text, found + 1))
    {
        ++count;
    }
    return count;
}

void StartedProcess::Signal(int signal) const
{
    kill(pid, signal);
}

void StartedProcess::SignalGroup(int signal) const
{
    kill(-pid, signal);
}

int StartedProcess::AwaitEnd()
{
    if (!isReaped)
    {
        const auto deadline = Clock::now() + patience;
        while (ReadOutput(deadline) == Input::Some)
        {
        }
        // The end of the output may come a moment before the end of the process, never much longer.
        int status = 0;
        waitpid(pid, &status, 0);
        isReaped = true;
        exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    return exitCode;
}

pid_t StartedProcess::GetProcessId(const std::string& logLine)
{
    const std::size_t bracket = logLine.find('[');
    if (bracket == std::string::npos)
    {
        throw std::runtime_error("No process id in: " + logLine);
    }
    return static_cast<pid_t>(std::stol(logLine.substr(bracket + 1)));
}

StartedProcess::Input StartedProcess::ReadOutput(Clock::time_point deadline)
{
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd readable{pipe, POLLIN, 0};
    if (rest <= 0 || poll(&readable, 1, static_cast<int>(rest)) == 0)
    {
        Fail("Nothing of what the test waits for came in time");
    }
    std::array<char, 65536> buffer{};
    const ssize_t count = read(pipe, buffer.data(), buffer.size());
    if (count <= 0)
    {
        return Input::End;
    }
    output.append(buffer.data(), static_cast<std::size_t>(count));
    return Input::Some;
}

void StartedProcess::Fail(const std::string& reason) const
{
    throw std::runtime_error(reason + ". Output of the process:\n" + output);
}

} // namespace Vela::Testing
