#pragma once

#include <Vela/String.hpp>

/// Marks what libVela.System.Kiro.so exports. Everything else in the library is hidden.
#define VELA_KIRO_API __attribute__((visibility("default")))

namespace Vela::System::Kiro
{

using Vela::String;

} // namespace Vela::System::Kiro
