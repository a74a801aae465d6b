#pragma once

#include "Output/Json.hpp"
#include "Output/Output.hpp"

namespace Vela::Kiroctl
{

/// Writes a plan as tables.
void WritePlan(Output& output, const Json& plan, bool isStopOrder);

/// What is different in another plan, as a list of: what ("process", "component", "variable", "value"), name, change
/// ("added", "removed", "changed", "moved"), field, before, after.
Json ComparePlans(const Json& plan, const Json& other);
void WriteDifferences(Output& output, const Json& differences);

} // namespace Vela::Kiroctl
