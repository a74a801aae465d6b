#include "NotificationRecorder.hpp"

#include <Vela/Exceptions.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace Vela::System::Kiro::Testing
{

namespace
{

bool Matches(const String& name, std::string_view pattern)
{
    if (!pattern.ends_with('*'))
    {
        return name == pattern;
    }
    pattern.remove_suffix(1);
    return name.starts_with(pattern);
}

} // namespace

NotificationRecorder::NotificationRecorder(std::chrono::seconds patienceOfTheTest)
    : patience(patienceOfTheTest)
    , marks(markName, "test kit", Nm::Severity::Information)
    , subscription(
          "*", [this](const Nm::Notification& notification) { Take(notification); },
          [this](std::uint64_t count)
          {
              const std::lock_guard lock(mutex);
              missedCount += count;
          })
{
}

void NotificationRecorder::Take(const Nm::Notification& notification)
{
    const std::lock_guard lock(mutex);
    if (notification.name == markName)
    {
        lastMarkSeen = notification.GetPayload<NotificationMark>().number;
    }
    else
    {
        notifications.push_back(notification);
        if (notifications.size() > mostNotifications)
        {
            notifications.pop_front();
        }
    }
    changed.notify_all();
}

void NotificationRecorder::AwaitAllSent(std::unique_lock<std::mutex>& lock)
{
    NotificationMark mark;
    mark.number = ++lastMarkSent;
    marks.Send(mark);
    if (!changed.wait_for(lock, patience, [&] { return lastMarkSeen >= mark.number; }))
    {
        throw Exception("Notifications are not delivered: a callback of a subscription does not return.");
    }
    if (missedCount != 0)
    {
        throw Exception("{0} notifications came too fast and were dropped.", missedCount);
    }
}

std::vector<Nm::Notification> NotificationRecorder::GetAll(const String& pattern)
{
    std::unique_lock lock(mutex);
    AwaitAllSent(lock);
    std::vector<Nm::Notification> result;
    std::ranges::copy_if(notifications, std::back_inserter(result),
                         [&pattern](const Nm::Notification& sent) { return Matches(sent.name, pattern); });
    return result;
}

Nm::Notification NotificationRecorder::Await(const String& name)
{
    std::unique_lock lock(mutex);
    auto found = notifications.end();
    const bool hasCome = changed.wait_for(lock, patience,
                                          [&]
                                          {
                                              found = std::ranges::find(notifications, name, &Nm::Notification::name);
                                              return found != notifications.end();
                                          });
    if (!hasCome)
    {
        String others;
        for (const Nm::Notification& notification : notifications)
        {
            others += "\n    " + notification.ToString();
        }
        throw Exception("No notification '{0}' was sent within {1} s, but these:{2}", name, patience.count(), others);
    }
    return *found;
}

} // namespace Vela::System::Kiro::Testing
