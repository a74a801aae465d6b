#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>

#include <Service/NotificationMarshaling.hpp>
#include <Service/NotificationMessages.hpp>

#include <cstdint>

namespace Vela::System::Nm::Internal
{

/// The broker as processes see it, its own included.
///
/// A process that subscribes opens a session, subscribes in it under numbers of its own choice, and fetches. Sessions
/// of processes that stay away give up their place when it is needed; their numbers are unknown from then on.
class INotificationService : public Rsc::IRscService
{
public:
    /// Hands notifications over, in their order.
    /// @throws ArgumentException when a notification has no valid name or is too large; none is taken then
    /// @throws InvalidOperationException when the broker has ended
    virtual void Publish(const NotificationBatch& batch) = 0;
    /// @return the number of the session
    /// @throws InvalidOperationException when too many processes subscribe
    virtual std::uint32_t OpenSession(const String& processName) = 0;
    /// Adds a subscription, or changes the pattern of the one with that number.
    /// @throws KeyNotFoundException for an unknown session
    virtual void Subscribe(std::uint32_t session, std::uint32_t subscription, const String& pattern) = 0;
    /// @throws KeyNotFoundException for an unknown session
    virtual void Unsubscribe(std::uint32_t session, std::uint32_t subscription) = 0;
    /// Takes what has come for the session's subscriptions; waits for it up to that time, at most a minute.
    /// @throws KeyNotFoundException for an unknown session, also when it is closed meanwhile
    virtual NotificationDelivery Fetch(std::uint32_t session, std::uint32_t waitMilliseconds) = 0;
    /// Nothing happens for an unknown session.
    virtual void CloseSession(std::uint32_t session) = 0;
};

} // namespace Vela::System::Nm::Internal

namespace Vela::System::Rsc
{

template <>
struct OperationTable<Nm::Internal::INotificationService>
{
    using Service = Nm::Internal::INotificationService;
    static constexpr const char* interfaceName = "Vela.System.Nm.INotificationService";
    static constexpr auto operations =
        Operations(Operation<1, &Service::Publish>("Publish"), Operation<2, &Service::OpenSession>("OpenSession"),
                   Operation<3, &Service::Subscribe>("Subscribe"), Operation<4, &Service::Unsubscribe>("Unsubscribe"),
                   Operation<5, &Service::Fetch>("Fetch"), Operation<6, &Service::CloseSession>("CloseSession"));
};

} // namespace Vela::System::Rsc
