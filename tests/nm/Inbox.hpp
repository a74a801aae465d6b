#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Nm/Notification.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <TestPayload.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace Vela::Testing
{

/// Far longer than anything takes, also with sanitizers or under emulation.
inline constexpr std::chrono::seconds patience{60};

/// Something that happens once; whoever waits for it fails after a long time.
class Gate
{
public:
    void Open()
    {
        const std::lock_guard lock(mutex);
        isOpen = true;
        changed.notify_all();
    }

    bool Await(std::chrono::milliseconds timeout = patience)
    {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, timeout, [this] { return isOpen; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
};

/// Keeps what subscriptions receive: the numbers of the payloads, and misses as negative numbers.
class Inbox
{
public:
    static constexpr std::int64_t unknownMisses = INT64_MIN;

    void Put(std::int64_t item)
    {
        const std::lock_guard lock(mutex);
        items.push_back(item);
        changed.notify_all();
    }

    System::Nm::NotificationSubscription::Callback Receive()
    {
        return [this](const System::Nm::Notification& notification)
        {
            Put(notification.GetPayload<NumberPayload>().number);
        };
    }

    System::Nm::NotificationSubscription::MissedCallback Miss()
    {
        return [this](std::uint64_t count)
        {
            Put(count == System::Nm::NotificationSubscription::unknownCount ? unknownMisses
                                                                            : -static_cast<std::int64_t>(count));
        };
    }

    /// Waits for that many items, or until patience is over, and answers what is there.
    std::vector<std::int64_t> Await(std::size_t count)
    {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, patience, [this, count] { return items.size() >= count; });
        return items;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::int64_t> items;
};

} // namespace Vela::Testing
