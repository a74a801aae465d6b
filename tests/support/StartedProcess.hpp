#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// A process that a test starts, with everything that it and its descendants write.
///
/// Standard output and standard error go to one pipe that the awaiting operations read, so a test waits for what
/// happens and never for time to pass. The descendants hold the same pipe: its end is the end of all of them.
class StartedProcess
{
public:
    /// Far longer than anything takes, also with sanitizers or under emulation.
    static constexpr std::chrono::seconds patience{60};

    /// Starts a process in a group of its own, as a shell does.
    /// @param environment  set on top of the test's environment
    /// @param standardInput  a descriptor for its standard input; -1: /dev/null
    StartedProcess(const std::string& executable, const std::vector<std::string>& arguments,
                   const std::map<std::string, std::string>& environment = {}, const std::string& workingDirectory = {},
                   int standardInput = -1);
    StartedProcess(const StartedProcess&) = delete;
    StartedProcess& operator=(const StartedProcess&) = delete;
    /// Kills it when it still runs.
    ~StartedProcess();

    [[nodiscard]] pid_t GetId() const noexcept
    {
        return pid;
    }

    /// Waits until the output holds `text`, and goes on behind it: the next search begins there.
    /// @return the whole line
    /// @throws std::runtime_error with the output when the process ends, or patience does, before it came
    std::string AwaitLine(const std::string& text);
    /// Whether the output so far holds a text.
    [[nodiscard]] bool HasOutput(const std::string& text) const;
    /// How often.
    [[nodiscard]] int CountOutput(const std::string& text) const;
    /// All output so far.
    [[nodiscard]] const std::string& GetOutput() const noexcept
    {
        return output;
    }

    /// Sends a signal to the process alone.
    void Signal(int signal) const;
    /// Sends a signal to its group, as Ctrl-C in a terminal does.
    void SignalGroup(int signal) const;

    /// Waits until the process has ended, and all its descendants that hold its output.
    /// @return its exit code, or the negative number of the signal that ended it
    /// @throws std::runtime_error with the output when it does not end
    int AwaitEnd();

    /// The process id that a line of the log carries: "Name[1234]".
    [[nodiscard]] static pid_t GetProcessId(const std::string& logLine);

private:
    enum class Input
    {
        Some,
        End,
    };

    Input ReadOutput(std::chrono::steady_clock::time_point deadline);
    [[noreturn]] void Fail(const std::string& reason) const;

    pid_t pid = -1;
    int pipe = -1;
    bool isReaped = false;
    int exitCode = 0;
    std::string output;
    std::size_t searchedUpTo = 0;
};

} // namespace Vela::Testing
