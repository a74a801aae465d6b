#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <sys/types.h>

#include <map>
#include <memory>
#include <vector>

namespace Vela::System::Commons::Runtime
{

/// What a child process gets besides its command line.
struct ProcessStartOptions
{
    /// Variables to set on top of this process's own environment.
    std::map<String, String> environment;
    /// Standard input is /dev/null unless the child inherits ours.
    bool inheritsStandardInput = false;
    /// Runs in a process group of its own, so that Ctrl-C does not reach it and Kill ends all that it started.
    bool hasOwnGroup = true;
    /// Starts with SIGTERM and SIGINT blocked, for a program that reads them (SignalHandler): one that comes before the
    /// program is ready then waits instead of ending it. Ctrl-C can meet a child before it is in its own group.
    bool holdsSignals = false;
};

/// How a process ended.
struct ProcessExit
{
    bool bySignal = false;
    /// The exit code or the signal's number.
    int code = 0;
    [[nodiscard]] VELA_COMMONS_API String ToString() const;
};

/// A child process, watched by its pidfd, so that a reused process id is never signalled.
///
/// A process that was never started has not exited, and Kill on it does nothing. Thread-safe.
class VELA_COMMONS_API Process
{
public:
    Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    /// Does not end the child; an ended child is reaped.
    ~Process();

    /// Starts a child with a clean signal mask (but see holdsSignals), default dispositions, the environment of this
    /// process and the processor affinity of the calling thread. Of our descriptors only the standard streams reach it.
    /// A process object starts one child in its life.
    /// @param workingDirectory  empty: the parent's
    /// @param fileName  the executable's path, relative to the working directory; looked up in PATH without a "/"
    /// @param arguments  split by the shell's quoting rules, without any expansion
    /// @throws ArgumentException for an unbalanced quote; InvalidOperationException when it was started already;
    /// Exception naming the file and the system's text
    void Start(const String& workingDirectory, const String& fileName, const String& arguments,
               const ProcessStartOptions& options = {});

    /// Starts a process that belongs to nobody: in a session of its own, its standard streams connected to nothing,
    /// its parent is init, and no zombie stays.
    /// @throws as Start does
    static void StartDaemon(const String& workingDirectory, const String& fileName, const String& arguments);

    [[nodiscard]] bool IsStarted() const;
    /// 0 when it was not started.
    [[nodiscard]] pid_t GetId() const;
    [[nodiscard]] bool HasExited() const;
    /// How it ended; meaningful after HasExited.
    [[nodiscard]] ProcessExit GetExit() const;
    /// The pidfd, readable once the process has exited; -1 when it was not started. Owned by this object.
    [[nodiscard]] int GetExitDescriptor() const;
    /// Waits until it has exited; false when the time is over first, and at once when it was not started. Negative: no
    /// limit.
    bool WaitForExit(int milliseconds) const;
    /// Kills the process and its whole group with SIGKILL and reaps it: the exit is seen first, then the group is
    /// killed, then the child is reaped, so that the group's id cannot have been given away. Also ends what is left of
    /// the group of a child that exited by itself. Waits at most two seconds for the exit.
    void Kill();

private:
    struct Data;
    std::unique_ptr<Data> data;
};

/// Splits a text into arguments by the shell's quoting rules: blanks separate, single quotes keep all, double quotes
/// keep all but a backslash before `"` and `\`, a backslash keeps the next character.
/// @throws ArgumentException for an unbalanced quote
VELA_COMMONS_API std::vector<String> SplitArguments(const String& arguments);
/// The text that SplitArguments gives back as one argument; unchanged when it needs no quotes.
VELA_COMMONS_API String QuoteArgument(const String& argument);

} // namespace Vela::System::Commons::Runtime
