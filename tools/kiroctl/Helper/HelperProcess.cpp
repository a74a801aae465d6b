#include "HelperProcess.hpp"

#include "CommandError.hpp"

#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

namespace Vela::Kiroctl
{

namespace
{

using System::Commons::GetErrorText;
using System::Commons::RetryInterrupted;
using System::Commons::UniqueFd;
using Clock = std::chrono::steady_clock;

/// More than any answer has.
constexpr std::size_t maxAnswerSize = std::size_t{64} * 1024 * 1024;

void WriteAll(int descriptor, std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t count = RetryInterrupted([&] { return ::write(descriptor, text.data(), text.size()); });
        if (count <= 0)
        {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

[[noreturn]] void RunHelper(int answerDescriptor, const std::function<Json()>& action)
{
    // It ends with the tool, leaves no core file behind, and what it says is its own business.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    // A crash shows as what it is, whoever handles signals in this process.
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
    {
        ::signal(signal, SIG_DFL);
    }
    const UniqueFd nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    ::dup2(nowhere.Get(), STDIN_FILENO);
    ::dup2(nowhere.Get(), STDOUT_FILENO);
    ::dup2(nowhere.Get(), STDERR_FILENO);
    Json message;
    try
    {
        message["answer"] = action();
    }
    catch (const std::exception& exception)
    {
        message["failure"] = exception.what();
    }
    catch (...)
    {
        message["failure"] = "unknown exception";
    }
    WriteAll(answerDescriptor, message.dump(-1, ' ', false, Json::error_handler_t::replace));
    // Nothing that was loaded gets another chance to run.
    ::_exit(0);
}

/// Reads to the end; false when the time is up.
bool ReadAnswer(int descriptor, Clock::time_point deadline, std::string& text)
{
    for (;;)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd poll{descriptor, POLLIN, 0};
        if (left.count() <= 0 ||
            RetryInterrupted([&] { return ::poll(&poll, 1, static_cast<int>(left.count())); }) == 0)
        {
            return false;
        }
        std::array<char, 65536> buffer{};
        const ssize_t count = RetryInterrupted([&] { return ::read(descriptor, buffer.data(), buffer.size()); });
        if (count <= 0 || text.size() > maxAnswerSize)
        {
            return true;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

HelperResult RunInHelper(const std::function<Json()>& action, std::chrono::milliseconds limit)
{
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
    {
        throw CommandError(ExitCode::Failed, "Cannot make a helper process: {}", GetErrorText(errno));
    }
    UniqueFd readEnd(pipe[0]);
    UniqueFd writeEnd(pipe[1]);
    // Buffered output must not be written twice.
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0)
    {
        throw CommandError(ExitCode::Failed, "Cannot make a helper process: {}", GetErrorText(errno));
    }
    if (child == 0)
    {
        RunHelper(writeEnd.Get(), action);
    }
    writeEnd.Reset();
    std::string text;
    const bool isInTime = ReadAnswer(readEnd.Get(), Clock::now() + limit, text);
    if (!isInTime)
    {
        ::kill(child, SIGKILL);
    }
    int status = 0;
    RetryInterrupted([&] { return ::waitpid(child, &status, 0); });
    if (!isInTime)
    {
        return {std::nullopt, fmt::format("did not answer within {}", limit % std::chrono::seconds(1) == limit.zero()
                                                                          ? fmt::format("{} s", limit.count() / 1000)
                                                                          : fmt::format("{} ms", limit.count()))};
    }
    Json message = Json::parse(text, nullptr, false);
    if (message.is_object() && message.contains("answer"))
    {
        return {std::move(message["answer"]), ""};
    }
    if (message.is_object() && message.contains("failure"))
    {
        return {std::nullopt, message["failure"].get<std::string>()};
    }
    return {std::nullopt, WIFSIGNALED(status) ? fmt::format("crashed ({})", ::strsignal(WTERMSIG(status)))
                                              : fmt::format("ended the process (exit code {})", WEXITSTATUS(status))};
}

} // namespace Vela::Kiroctl
