#pragma once

#include <Sm/Data/ProcessData.hpp>
#include <Vela/String.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

/// Tells a child the id of the process that started it, so that it can see whether that one is still its parent.
inline constexpr const char* parentProcessIdVariable = "VELA_PARENT_PID";

/// The arguments of a child that runs the main executable, as one text. Values with blanks or quotes in them are
/// quoted.
[[nodiscard]] String BuildChildArguments(const Data::ProcessData& process);

} // namespace Vela::System::Kiro::Internal::Sm
