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

/// Notices new files in a runtime directory, between Begin and End.
///
/// Made to be kept: closing the system's watch takes 10 to 20 ms when its directory was given up only just before.
class DirectoryWatch
{
public:
    using Clock = std::chrono::steady_clock;

    /// Nothing is missed from here on, so whoever looks afterwards may wait for what was not there yet.
    void Begin(const RuntimeDirectory& directory);
    void End() noexcept;

    /// Waits for a new file.
    WaitResult WaitForFile(Clock::time_point deadline, std::span<const int> wakeDescriptors);

private:
    void Drain() const noexcept;

    Commons::UniqueFd descriptor;
    int directoryWatch = -1;
};

/// Waits until `descriptor` (when it is not negative) or one of the others is readable.
WaitResult WaitForInput(int descriptor, std::chrono::steady_clock::time_point deadline,
                        std::span<const int> wakeDescriptors);

} // namespace Vela::System::Rsc
