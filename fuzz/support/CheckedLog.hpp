#pragma once

namespace Vela::Fuzz
{

/// Gives the process a log that formats every message, checks that no text passes for a message of its own, and writes
/// nothing. Repeated calls do nothing.
void SetUpCheckedLog();

} // namespace Vela::Fuzz
