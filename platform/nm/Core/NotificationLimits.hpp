#pragma once

#include <chrono>
#include <cstddef>

namespace Vela::System::Nm::Internal
{

/// Bytes that one notification may take; larger ones are refused when they are sent.
inline constexpr std::size_t maxNotificationSize = std::size_t{64} * 1024;

/// What one call of the notification service carries at most, in notifications and in bytes of memory; the first
/// notification goes in any case.
inline constexpr std::size_t maxBatchCount = 256;
inline constexpr std::size_t maxBatchSize = std::size_t{256} * 1024;

/// Names whose losses are told apart; beyond, which only a faulty sender reaches, they are forgotten. So many fit into
/// one call, beside the notifications.
inline constexpr std::size_t maxLossNames = 1024;

/// Limits that the settings of the notifications can change.
struct NotificationLimits
{
    /// What each queue holds: of the broker before it dispatches, of each subscribing process, of each sending one.
    std::size_t maxQueuedNotifications = 1024;
    std::size_t maxQueuedBytes = std::size_t{1024} * 1024;
    /// Processes that subscribe at a time.
    std::size_t maxSubscribers = 64;
    /// How long a subscribing process may stay away before it gives up its place to another one.
    std::chrono::milliseconds subscriberIdleTime{60'000};
};

} // namespace Vela::System::Nm::Internal
