#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Kiro/Internal/StartState.hpp>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <vector>

namespace Vela::System::Kiro::Internal
{
namespace
{

/// The signals whose dispositions a process changes for itself.
constexpr std::array changedSignals{SIGTERM, SIGINT, SIGCHLD, SIGPIPE};

/// Opens standard streams that are closed on /dev/null: otherwise the next file would take their place and the log with
/// it. Children inherit them.
void OpenMissingStreams()
{
    int descriptor = 0;
    do
    {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

std::vector<String> CopyTexts(char** texts)
{
    std::vector<String> copies;
    for (; *texts != nullptr; ++texts)
    {
        copies.emplace_back(*texts);
    }
    return copies;
}

/// The texts as the system takes them; they are not changed by it.
std::vector<char*> MakePointers(const std::vector<String>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const String& text : texts)
    {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

struct StartState::Data
{
    String executable;
    std::vector<String> arguments;
    std::vector<String> environment;
    Commons::UniqueFd workingDirectory;
    sigset_t signalMask{};
    std::array<struct sigaction, changedSignals.size()> dispositions{};
    bool hasAffinity = false;
    cpu_set_t affinity{};
};

StartState::StartState(int argc, char** argv)
    : data(std::make_unique<Data>())
{
    OpenMissingStreams();
    data->executable = Commons::Environment::GetExecutablePath();
    data->arguments.assign(argv, argv + argc);
    data->environment = CopyTexts(environ);
    data->workingDirectory.Reset(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    pthread_sigmask(SIG_SETMASK, nullptr, &data->signalMask);
    for (std::size_t index = 0; index < changedSignals.size(); ++index)
    {
        sigaction(changedSignals[index], nullptr, &data->dispositions[index]);
    }
    data->hasAffinity = sched_getaffinity(0, sizeof data->affinity, &data->affinity) == 0;
}

StartState::~StartState() = default;

void StartState::StartAgain() const
{
    const std::vector<char*> arguments = MakePointers(data->arguments);
    const std::vector<char*> environment = MakePointers(data->environment);
    std::cout.flush();
    std::fflush(nullptr);
    if (data->hasAffinity)
    {
        sched_setaffinity(0, sizeof data->affinity, &data->affinity);
    }
    if (data->workingDirectory.IsValid() && fchdir(data->workingDirectory.Get()) != 0)
    {
        Commons::ThrowSystemError("Cannot return to the working directory of the start");
    }
    for (std::size_t index = 0; index < changedSignals.size(); ++index)
    {
        sigaction(changedSignals[index], &data->dispositions[index], nullptr);
    }
    pthread_sigmask(SIG_SETMASK, &data->signalMask, nullptr);
    execve(data->executable.c_str(), arguments.data(), environment.data());
    Commons::ThrowSystemError("Cannot start '" + data->executable + "' again");
}

} // namespace Vela::System::Kiro::Internal
