#pragma once

#include "../Output/Json.hpp"
#include "RunningSystem.hpp"

namespace Vela::Kiroctl
{

/// A running system in the form of a plan, as far as a picture of it needs that. Besides there are
///
///     services:    as ListServices tells them, those that a component publishes or uses
///
/// @throws CommandError (Unreachable) when a process does not answer
Json DescribeRunningSystem(const RunningSystem& system);

} // namespace Vela::Kiroctl
