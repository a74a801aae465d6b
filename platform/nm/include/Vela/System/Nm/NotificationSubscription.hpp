#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Nm/Api.hpp>
#include <Vela/System/Nm/Notification.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

namespace Vela::System::Nm
{

namespace Internal
{
class NotificationCore;
}

/// The wish to receive notifications, from any process of the system.
///
/// From the return of the constructor on every matching notification is received, in the order in which the broker in
/// the main process got them, or counted as missed when this process was too slow to take it. Who subscribes before
/// the system starts dispatching receives, when it starts, also what was sent since the main process came up.
///
/// Callbacks run on the process's one dispatch thread, one at a time: a slow one delays all others. An exception out of
/// a callback is logged and ends nothing. A callback may send, subscribe and dispose subscriptions, its own included.
///
/// A subscription belongs to the notification manager that is there when it is made, and outlives it harmlessly: from
/// its end on nothing is received.
class VELA_NM_API NotificationSubscription
{
public:
    using Callback = std::function<void(const Notification&)>;
    /// Called with the number of notifications missed since the last callback; `unknownCount` when it cannot be told,
    /// because the broker was lost for a while.
    using MissedCallback = std::function<void(std::uint64_t count)>;
    static constexpr std::uint64_t unknownCount = UINT64_MAX;

    /// Subscribes. In the main process this is quick; elsewhere it is a call to the main process.
    /// @param pattern a notification's name, or the beginning of names followed by "*"; at most 255 bytes
    /// @param missedCallback when empty, misses are logged as warnings
    /// @throws ArgumentException when the pattern or the callback is empty, or "*" stands elsewhere than at the end
    /// @throws RscException when the broker cannot be reached
    /// @throws Exception "AppDomain Singleton instance ..." when there is no notification manager
    NotificationSubscription(const String& pattern, Callback callback, MissedCallback missedCallback = {});
    NotificationSubscription(const NotificationSubscription&) = delete;
    NotificationSubscription& operator=(const NotificationSubscription&) = delete;
    /// Disposes.
    ~NotificationSubscription();

    /// Ends the subscription and waits for a callback in progress, unless called from inside it: afterwards none runs.
    /// So do not hold a lock that the callback needs. A second call does nothing.
    void Dispose() noexcept;

private:
    const std::shared_ptr<Internal::NotificationCore> core;
    const std::uint32_t id;
    std::atomic<bool> isDisposed{false};
};

} // namespace Vela::System::Nm
