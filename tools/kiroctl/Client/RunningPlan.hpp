#pragma once

#include "../Output/Json.hpp"
#include "RunningSystem.hpp"
#include "ServiceList.hpp"

namespace Vela::Kiroctl
{

/// A running system in the form of a plan, as far as a picture of it needs that. Besides there are
///
///     services:    those of the list that are not the framework's own
///
/// @throws CommandError (Unreachable) when the main process does not answer
Json DescribeRunningSystem(const RunningSystem& system, const ServiceList& services);

} // namespace Vela::Kiroctl
