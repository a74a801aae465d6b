#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>

#include <spawn.h>
#include <sys/types.h>

#include <vector>

namespace Vela::System::Commons::Runtime
{

/// Everything that a new process is started with, prepared beforehand, so that the start itself needs no memory and
/// takes no lock.
class SpawnPlan
{
public:
    enum class Kind
    {
        Child,
        /// In a session of its own, without any of this process's streams.
        Daemon,
    };

    /// @throws Exception when the directory or the file cannot be used
    SpawnPlan(Kind kind, const String& workingDirectory, const String& fileName, const String& arguments,
              const ProcessStartOptions& options);
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan();

    /// Starts the process; answers 0 or an errno value.
    int Spawn(pid_t& processId) const noexcept;

private:
    void CheckFile(const String& workingDirectory) const;
    void SetAttributes(Kind kind, const ProcessStartOptions& options);
    void SetActions(Kind kind, const String& workingDirectory, const ProcessStartOptions& options);

    const String file;
    std::vector<String> argumentTexts;
    std::vector<String> environmentTexts;
    std::vector<char*> argumentPointers;
    std::vector<char*> environmentPointers;
    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t actions{};
};

/// Throws "Could not start process '<fileName>': <text of the error>".
[[noreturn]] void ThrowStartFailed(const String& fileName, int errorNumber);

} // namespace Vela::System::Commons::Runtime
