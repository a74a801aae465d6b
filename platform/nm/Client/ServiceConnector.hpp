#pragma once

#include <Service/INotificationService.hpp>

#include <chrono>
#include <functional>
#include <memory>

namespace Vela::System::Nm::Internal
{

/// Finds the broker, within a bounded time.
/// @throws Exception of some kind when it cannot be reached
using ServiceConnector = std::function<std::shared_ptr<INotificationService>()>;

/// How long threads pause between attempts to reach a broker that is not there.
inline constexpr std::chrono::milliseconds reconnectPause{1000};

} // namespace Vela::System::Nm::Internal
