#pragma once

#include "../Output/Json.hpp"
#include "RunningSystem.hpp"

namespace Vela::Kiroctl
{

/// The services that the processes of a system publish now, and who uses them. Each has
///
///     name, interface, process, component (empty: no component published it), users (process, component)
///
/// @throws CommandError (Unreachable) when a process does not answer
Json ListServices(const RunningSystem& system);

} // namespace Vela::Kiroctl
