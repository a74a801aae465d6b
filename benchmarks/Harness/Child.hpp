#pragma once

#include <Vela/System/Commons/UniqueFd.hpp>

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace Vela::Benchmarks
{

/// A process that is measured. Its output is read line by line; its input ends when it is asked to end. It never
/// outlives the benchmark.
class Child
{
public:
    /// @param environment  set on top of the benchmark's own
    /// @param workingDirectory  empty: the benchmark's
    Child(const std::string& executable, const std::vector<std::string>& arguments,
          const std::map<std::string, std::string>& environment = {}, const std::string& workingDirectory = {});
    /// This executable in another role.
    static Child StartRole(const std::string& role, const std::vector<std::string>& arguments);

    Child(Child&& other) noexcept;
    Child& operator=(Child&&) = delete;
    /// Kills it when it still runs.
    ~Child();

    [[nodiscard]] pid_t GetId() const noexcept
    {
        return pid;
    }

    /// @throws Exception with the output so far when the process ends, or is silent for too long
    std::string ReadLine();
    /// Reads lines up to one that holds a text, and returns it.
    std::string AwaitLine(const std::string& text);
    void WriteLine(const std::string& line) const;

    void Signal(int signal) const;
    /// Ends the input and waits for an orderly end.
    /// @throws Exception when it ends in another way
    void End();

private:
    pid_t pid = -1;
    System::Commons::UniqueFd input;
    System::Commons::UniqueFd output;
    std::string received;
    std::string lines;
};

/// A file beside this executable (as "bin/kiro-bench-bare") in its build tree.
std::string GetBuiltFile(const std::string& name);

/// For the other side of StartRole: returns when the benchmark ends the input.
void AwaitEndOfInput();

} // namespace Vela::Benchmarks
