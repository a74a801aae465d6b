#pragma once

#include <Sm/ISystemManagerHost.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <ctime>
#include <mutex>
#include <vector>

namespace Vela::System::Kiro::Internal
{

/// Leaves one record in the runtime directory when this process's system fails: what a crashed child has recorded
/// itself is added to. Thread-safe.
class FailureRecord : private Commons::Diagnostics::Loggable<FailureRecord>
{
public:
    /// What the system does from now on.
    void SetPhase(const String& text);
    /// Never throws: without room for a record the failure itself is still in the log.
    /// @param place  fields that say which step of what has failed
    void Write(const String& processName, const String& reason, const String& error,
               const Commons::Diagnostics::CrashRecords::Fields& place,
               const std::vector<Sm::ProcessState>& processes) noexcept;

    /// Whether the runtime directory belongs to the system of another main process that lives.
    static bool IsDirectoryTaken() noexcept;

    /// Leaves the times of a start that has failed beside the records, in place of those of an earlier one. Never
    /// throws.
    static void WriteTimeline(const String& document) noexcept;

private:
    /// Records from before this process are not of its children.
    const std::time_t startTime = std::time(nullptr);
    std::mutex mutex;
    String phase;
    /// The record that this process began or added to.
    String name;
};

} // namespace Vela::System::Kiro::Internal
