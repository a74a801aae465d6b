#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <span>

namespace Vela::System::Kiro::Internal::Sm
{

/// Finds the process manager service of a process, waiting for it no longer than `limit`; a wait ends early when one of
/// the descriptors becomes readable. Empty when the process is not reachable.
using ProcessConnector = std::function<std::shared_ptr<Services::Internal::IProcessManagerService>(
    const String& processName, std::chrono::milliseconds limit, std::span<const int> wakeDescriptors)>;

/// The connector over remoting.
std::shared_ptr<Services::Internal::IProcessManagerService>
ConnectToProcess(const String& processName, std::chrono::milliseconds limit, std::span<const int> wakeDescriptors);

} // namespace Vela::System::Kiro::Internal::Sm
