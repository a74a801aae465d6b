#include <Vela/CaughtException.hpp>

#include <Client/NotificationForwarder.hpp>

#include <utility>

namespace Vela::System::Nm::Internal
{

NotificationForwarder::NotificationForwarder(ServiceConnector serviceConnector, const NotificationLimits& limits)
    : connector(std::move(serviceConnector))
    , queue(limits)
{
}

NotificationForwarder::~NotificationForwarder()
{
    Stop();
}

bool NotificationForwarder::Post(const NotificationPointer& notification)
{
    const std::lock_guard lock(mutex);
    if (isStopping)
    {
        return false;
    }
    if (!thread.IsJoinable())
    {
        thread = Commons::Threading::Thread("NmForwarder", [this] { Run(); });
    }
    queue.Push(notification, notification->GetSize(),
               [this](const NotificationPointer& dropped) { AddLosses(dropped->name, 1); });
    changed.notify_all();
    return true;
}

void NotificationForwarder::Stop()
{
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
        changed.notify_all();
    }
    if (thread.IsJoinable())
    {
        thread.Join();
    }
}

void NotificationForwarder::Run()
{
    while (true)
    {
        {
            std::unique_lock lock(mutex);
            changed.wait(lock, [this] { return isStopping || HasWork(); });
            if (!HasWork())
            {
                return;
            }
        }
        const bool isConnected = TryConnect();
        if (isConnected && Publish(TakeBatch()))
        {
            continue;
        }
        // What has not been tried yet is worth another connection at once.
        std::unique_lock lock(mutex);
        const auto hasFreshWork = [&]
        {
            return isConnected && !queue.IsEmpty();
        };
        if (isStopping && !hasFreshWork())
        {
            if (!queue.IsEmpty())
            {
                log.Warning("{0} notifications were not sent: the broker cannot be reached.", queue.GetCount());
            }
            return;
        }
        changed.wait_for(lock, reconnectPause, [&] { return isStopping || hasFreshWork(); });
    }
}

bool NotificationForwarder::HasWork() const noexcept
{
    return !queue.IsEmpty() || !losses.empty();
}

void NotificationForwarder::AddLosses(const String& name, std::uint64_t count)
{
    if (losses.size() < maxLossNames || losses.contains(name))
    {
        losses[name] += count;
    }
}

bool NotificationForwarder::TryConnect()
{
    if (service != nullptr)
    {
        return true;
    }
    try
    {
        service = connector();
        return true;
    }
    catch (...)
    {
        Report(CaughtException::Current().GetText());
        return false;
    }
}

NotificationBatch NotificationForwarder::TakeBatch()
{
    NotificationBatch batch;
    const std::lock_guard lock(mutex);
    for (const auto& [name, count] : losses)
    {
        batch.losses.push_back({name, count});
    }
    losses.clear();
    queue.PopBatch([&batch](NotificationPointer notification)
                   { batch.notifications.push_back(std::move(notification)); });
    return batch;
}

bool NotificationForwarder::Publish(const NotificationBatch& batch)
{
    try
    {
        service->Publish(batch);
        isProblemReported = false;
        return true;
    }
    catch (...)
    {
        Report(CaughtException::Current().GetText());
        service.reset();
        PutBackLosses(batch);
        return false;
    }
}

void NotificationForwarder::PutBackLosses(const NotificationBatch& batch)
{
    // The broker may have got the batch and only its answer was lost. Sending it again could deliver it twice.
    const std::lock_guard lock(mutex);
    for (const NotificationLoss& loss : batch.losses)
    {
        AddLosses(loss.name, loss.count);
    }
    for (const NotificationPointer& notification : batch.notifications)
    {
        AddLosses(notification->name, 1);
    }
}

void NotificationForwarder::Report(const String& problem)
{
    if (!isProblemReported)
    {
        log.Warning("Notifications cannot be handed to the broker at present: {0}", problem);
        isProblemReported = true;
    }
}

} // namespace Vela::System::Nm::Internal
