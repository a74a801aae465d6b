#pragma once

#include <Vela/String.hpp>

#include <optional>

namespace Vela::System::Kiro::Internal
{

/// Whether a main process has started this process as a child.
bool HasParentProcess();

/// The id of the process that started this child, when it has ended. Nothing while it lives, and where nobody told
/// which one it is: in a main process and in a child that was started by hand.
std::optional<String> FindEndedParent();

} // namespace Vela::System::Kiro::Internal
