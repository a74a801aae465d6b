#pragma once

#include <Vela/System/Commons/UniqueFd.hpp>

#include <chrono>
#include <cstdint>
#include <span>

namespace Vela::System::Rsc
{

class RuntimeDirectory;

/// How a wait for another process ended.
enum class WaitResult : std::uint8_t
{
    /// Something happened: try again.
    Changed,
    TimedOut,
    /// One of the caller's descriptors became readable.
    Woken,
};

/// Notices new files in a runtime directory, from its construction on, so that nothing is missed between a look and
/// the wait that follows.
class DirectoryWatch
{
public:
    using Clock = std::chrono::steady_clock;

    explicit DirectoryWatch(const RuntimeDirectory& directory);

    /// Waits for a new file.
    WaitResult WaitForFile(Clock::time_point deadline, std::span<const int> wakeDescriptors);

private:
    void Drain() const;

    Commons::UniqueFd descriptor;
};

/// Waits until `descriptor` (when it is not negative) or one of the others is readable.
WaitResult WaitForInput(int descriptor, std::chrono::steady_clock::time_point deadline,
                        std::span<const int> wakeDescriptors);

} // namespace Vela::System::Rsc
