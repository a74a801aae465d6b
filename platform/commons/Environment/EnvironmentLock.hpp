#pragma once

#include <Vela/String.hpp>

#include <mutex>
#include <vector>

namespace Vela::System::Commons
{

/// Guards the definitions and the process environment itself.
std::mutex& GetEnvironmentMutex();

/// The process environment as texts "NAME=value".
std::vector<String> CopyProcessEnvironment();

} // namespace Vela::System::Commons
