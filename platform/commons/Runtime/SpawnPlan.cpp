#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <Environment/EnvironmentLock.hpp>
#include <Runtime/SpawnPlan.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>

namespace Vela::System::Commons::Runtime
{

namespace
{

std::vector<String> MergeEnvironment(const std::map<String, String>& variables)
{
    auto texts = CopyProcessEnvironment();
    std::erase_if(texts, [&](const String& text) { return variables.contains(text.substr(0, text.find('='))); });
    for (const auto& [name, value] : variables)
    {
        texts.push_back(fmt::format("{}={}", name, value));
    }
    return texts;
}

std::vector<char*> PointTo(std::vector<String>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// These preparations fail for want of memory only.
void Check(int errorNumber)
{
    if (errorNumber != 0)
    {
        ThrowSystemError("Could not prepare a process", errorNumber);
    }
}

} // namespace

void ThrowStartFailed(const String& fileName, int errorNumber)
{
    ThrowSystemError(fmt::format("Could not start process '{0}'", fileName), errorNumber);
}

SpawnPlan::SpawnPlan(Kind kind, const String& workingDirectory, const String& fileName, const String& arguments,
                     const ProcessStartOptions& options)
    : file(fileName)
    , argumentTexts(SplitArguments(arguments))
    , environmentTexts(MergeEnvironment(options.environment))
{
    CheckFile(workingDirectory);
    argumentTexts.insert(argumentTexts.begin(), fileName);
    argumentPointers = PointTo(argumentTexts);
    environmentPointers = PointTo(environmentTexts);
    Check(::posix_spawnattr_init(&attributes));
    Check(::posix_spawn_file_actions_init(&actions));
    SetAttributes(kind, options);
    SetActions(kind, workingDirectory, options);
}

SpawnPlan::~SpawnPlan()
{
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
}

int SpawnPlan::Spawn(pid_t& processId) const noexcept
{
    return ::posix_spawnp(&processId, file.c_str(), &actions, &attributes, argumentPointers.data(),
                          environmentPointers.data());
}

void SpawnPlan::CheckFile(const String& workingDirectory) const
{
    // The start itself would only say that something does not exist, not what.
    if (!workingDirectory.empty() && !Io::Directory::Exists(workingDirectory))
    {
        throw NotExistException("Could not start process '{0}': working directory '{1}' does not exist", file,
                                workingDirectory);
    }
    if (file.empty())
    {
        throw ArgumentNullException("fileName");
    }
    const bool isPath = file.find('/') != String::npos;
    if (isPath && ::access(Io::Path::Combine(workingDirectory, file).c_str(), X_OK) != 0)
    {
        ThrowStartFailed(file, errno);
    }
}

void SpawnPlan::SetAttributes(Kind kind, const ProcessStartOptions& options)
{
    sigset_t signals;
    ::sigemptyset(&signals);
    if (options.holdsSignals)
    {
        ::sigaddset(&signals, SIGTERM);
        ::sigaddset(&signals, SIGINT);
    }
    Check(::posix_spawnattr_setsigmask(&attributes, &signals));
    ::sigfillset(&signals);
    Check(::posix_spawnattr_setsigdefault(&attributes, &signals));
    Check(::posix_spawnattr_setpgroup(&attributes, 0));
    int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    if (kind == Kind::Daemon)
    {
        flags |= POSIX_SPAWN_SETSID;
    }
    else if (options.hasOwnGroup)
    {
        flags |= POSIX_SPAWN_SETPGROUP;
    }
    Check(::posix_spawnattr_setflags(&attributes, static_cast<short>(flags)));
}

void SpawnPlan::SetActions(Kind kind, const String& workingDirectory, const ProcessStartOptions& options)
{
    constexpr const char* nowhere = "/dev/null";
    if (!options.inheritsStandardInput)
    {
        Check(::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, nowhere, O_RDONLY, 0));
    }
    if (kind == Kind::Daemon)
    {
        Check(::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, nowhere, O_WRONLY, 0));
        Check(::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, nowhere, O_WRONLY, 0));
    }
    if (!workingDirectory.empty())
    {
        Check(::posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str()));
    }
    // Ours are close-on-exec; those of other people's libraries need not be.
    Check(::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1));
}

} // namespace Vela::System::Commons::Runtime
