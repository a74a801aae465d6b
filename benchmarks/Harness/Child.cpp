#include "Harness/Child.hpp"

#include "ExecutionTexts.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <utility>

namespace Vela::Benchmarks
{

using System::Commons::RetryInterrupted;
using System::Commons::ThrowSystemError;
using System::Commons::UniqueFd;

namespace
{

constexpr int patience = 60'000;

struct Pipe
{
    Pipe()
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        {
            ThrowSystemError("pipe2");
        }
        reader.Reset(ends[0]);
        writer.Reset(ends[1]);
    }

    UniqueFd reader;
    UniqueFd writer;
};

} // namespace

Child::Child(const std::string& executable, const std::vector<std::string>& arguments,
             const std::map<std::string, std::string>& environment, const std::string& workingDirectory)
{
    const auto command = Testing::ExecutionTexts::MakeCommand(executable, arguments);
    const auto variables = Testing::ExecutionTexts::MakeEnvironment(environment);
    Pipe toChild;
    Pipe fromChild;
    const pid_t parent = ::getpid();
    pid = ::fork();
    if (pid < 0)
    {
        ThrowSystemError("fork");
    }
    if (pid == 0)
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const bool isReady = ::getppid() == parent && ::dup2(toChild.reader.Get(), STDIN_FILENO) >= 0 &&
                             ::dup2(fromChild.writer.Get(), STDOUT_FILENO) >= 0 &&
                             (workingDirectory.empty() || ::chdir(workingDirectory.c_str()) == 0);
        if (isReady)
        {
            ::execve(executable.c_str(), command.Get(), variables.Get());
        }
        ::_exit(127);
    }
    input = std::move(toChild.writer);
    output = std::move(fromChild.reader);
}

Child Child::StartRole(const std::string& role, const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{"--as", role};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Child(GetBuiltFile("bin/kiro-bench"), words);
}

Child::Child(Child&& other) noexcept
    : pid(std::exchange(other.pid, -1))
    , input(std::move(other.input))
    , output(std::move(other.output))
    , received(std::move(other.received))
    , lines(std::move(other.lines))
{
}

Child::~Child()
{
    if (pid > 0)
    {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
    }
}

std::string Child::ReadLine()
{
    for (;;)
    {
        if (const auto end = received.find('\n'); end != std::string::npos)
        {
            std::string line = received.substr(0, end);
            received.erase(0, end + 1);
            lines += line + '\n';
            return line;
        }
        pollfd readable{output.Get(), POLLIN, 0};
        std::array<char, 4096> buffer{};
        if (RetryInterrupted([&readable] { return ::poll(&readable, 1, patience); }) == 0)
        {
            throw Exception("Process {0} is silent. Its output:\n{1}", pid, lines);
        }
        const auto count = RetryInterrupted([&] { return ::read(output.Get(), buffer.data(), buffer.size()); });
        if (count <= 0)
        {
            throw Exception("Process {0} has ended. Its output:\n{1}", pid, lines);
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::string Child::AwaitLine(const std::string& text)
{
    for (;;)
    {
        if (std::string line = ReadLine(); line.find(text) != std::string::npos)
        {
            return line;
        }
    }
}

void Child::WriteLine(const std::string& line) const
{
    const std::string text = line + '\n';
    if (::write(input.Get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    {
        ThrowSystemError("write");
    }
}

void Child::Signal(int signal) const
{
    ::kill(pid, signal);
}

void Child::End()
{
    input.Reset();
    int status = 0;
    if (RetryInterrupted([&] { return ::waitpid(pid, &status, 0); }) != std::exchange(pid, -1) || status != 0)
    {
        throw Exception("A measured process ended with status {0}. Its output:\n{1}", status, lines);
    }
}

std::string GetBuiltFile(const std::string& name)
{
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / name).string();
}

void AwaitEndOfInput()
{
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
}

} // namespace Vela::Benchmarks
