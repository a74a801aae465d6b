#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <Broker/BoundedQueue.hpp>
#include <Client/ServiceConnector.hpp>
#include <Core/NotificationLimits.hpp>
#include <Service/NotificationMessages.hpp>

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace Vela::System::Nm::Internal
{

/// Hands the notifications of a process without broker to the broker, on a thread of its own that begins with the first
/// notification. What cannot be handed over is counted, and the broker is told the count. Thread-safe.
class NotificationForwarder : private Commons::Diagnostics::Loggable<NotificationForwarder>
{
public:
    NotificationForwarder(ServiceConnector serviceConnector, const NotificationLimits& limits);
    NotificationForwarder(const NotificationForwarder&) = delete;
    NotificationForwarder& operator=(const NotificationForwarder&) = delete;
    /// Stops.
    ~NotificationForwarder();

    /// Queues a notification without waiting; false once the forwarder is stopped.
    bool Post(const NotificationPointer& notification);
    /// Hands over what is queued, as long as that works, and ends the thread. A second call does nothing.
    void Stop();

private:
    void Run();
    [[nodiscard]] bool HasWork() const noexcept;
    void AddLosses(const String& name, std::uint64_t count);
    bool TryConnect();
    [[nodiscard]] NotificationBatch TakeBatch();
    /// False when the batch is lost.
    bool Publish(const NotificationBatch& batch);
    void PutBackLosses(const NotificationBatch& batch);
    void Report(const String& problem);

    const ServiceConnector connector;
    std::mutex mutex;
    std::condition_variable changed;
    BoundedQueue<NotificationPointer> queue;
    std::map<String, std::uint64_t> losses;
    bool isStopping = false;
    Commons::Threading::Thread thread;
    // Used by the thread alone.
    std::shared_ptr<INotificationService> service;
    bool isProblemReported = false;
};

} // namespace Vela::System::Nm::Internal
