#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <tuple>
#include <vector>

namespace Vela::System::Kiro::Testing
{

/// Sent by the recorder itself: what was sent before has come when it comes.
class NotificationMark : public Nm::NotificationPayload
{
public:
    static constexpr auto Fields()
    {
        return std::tuple(Nm::PayloadField("number", &NotificationMark::number));
    }

    std::uint64_t number = 0;
};

/// Keeps what is sent. Made when the process's notifications are set up, before they are delivered.
class NotificationRecorder
{
public:
    explicit NotificationRecorder(std::chrono::seconds patience);

    /// All that have been sent before the call: those still on their way are waited for.
    /// @throws Exception when some were dropped because they came too fast
    [[nodiscard]] std::vector<Nm::Notification> GetAll(const String& pattern);
    /// The first of that name.
    /// @throws Exception when it does not come in time
    [[nodiscard]] Nm::Notification Await(const String& name);

private:
    static constexpr const char* markName = "Vela.System.Kiro.Testing.Mark";
    static constexpr std::size_t mostNotifications = 10'000;

    void Take(const Nm::Notification& notification);
    void AwaitAllSent(std::unique_lock<std::mutex>& lock);

    const std::chrono::seconds patience;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Nm::Notification> notifications;
    std::uint64_t missedCount = 0;
    std::uint64_t lastMarkSent = 0;
    std::uint64_t lastMarkSeen = 0;
    Nm::NotificationRegistration<NotificationMark> marks;
    /// Last, so that no callback runs when the rest is not there.
    Nm::NotificationSubscription subscription;
};

} // namespace Vela::System::Kiro::Testing
