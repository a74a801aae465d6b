#pragma once

#include <Vela/System/Commons/Api.hpp>

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>

namespace Vela::System::Commons::Runtime
{

/// What a process takes of the machine.
struct ProcessUsage
{
    /// Bytes in memory, those shared with other processes included.
    std::uint64_t residentBytes = 0;
    /// The same with each shared page counted in equal parts for its users; 0 where the kernel does not tell.
    std::uint64_t proportionalBytes = 0;
    std::chrono::microseconds userTime{0};
    std::chrono::microseconds systemTime{0};
    std::uint32_t threads = 0;
    /// The kernel's letter: R runs, S sleeps, D waits for a device, T is stopped, Z has ended.
    char state = '?';
};

/// Reads the figures of a process, of this one or of another of the same user; empty when there is none of that id.
VELA_COMMONS_API std::optional<ProcessUsage> ReadProcessUsage(pid_t process);

} // namespace Vela::System::Commons::Runtime
