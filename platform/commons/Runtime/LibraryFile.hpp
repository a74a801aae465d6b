#pragma once

#include <Vela/String.hpp>

namespace Vela::System::Commons::Runtime
{

/// Whether the file of a shared library ends before the contents that its own headers announce. The system's loader
/// maps such a file as if it were whole, and whoever touches what is missing dies of SIGBUS. All other damage is left
/// to the loader to tell.
[[nodiscard]] bool IsCutOff(const String& libraryPath);

} // namespace Vela::System::Commons::Runtime
