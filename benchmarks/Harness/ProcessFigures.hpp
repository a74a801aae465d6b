#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vela::Benchmarks
{

/// What the system says of a process.

/// Memory in KiB; what several processes map counts in equal parts for each of them.
std::size_t GetProportionalMemory(pid_t pid);
std::size_t GetThreadCount(pid_t pid);
/// How often its threads went to sleep and were woken.
std::uint64_t GetWakeUps(pid_t pid);
std::vector<pid_t> GetChildren(pid_t pid);

} // namespace Vela::Benchmarks
