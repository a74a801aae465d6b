#pragma once

#include <Vela/System/Rsc/RscServiceProxy.hpp>

#include <Service/INotificationService.hpp>

namespace Vela::System::Nm::Internal
{

/// The broker as seen from another process.
class NotificationServiceProxy final : public Rsc::RscServiceProxyBase<INotificationService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;

    void Publish(const NotificationBatch& batch) override
    {
        Invoke<&INotificationService::Publish>(batch);
    }

    std::uint32_t OpenSession(const String& processName) override
    {
        return Invoke<&INotificationService::OpenSession>(processName);
    }

    void Subscribe(std::uint32_t session, std::uint32_t subscription, const String& pattern) override
    {
        Invoke<&INotificationService::Subscribe>(session, subscription, pattern);
    }

    void Unsubscribe(std::uint32_t session, std::uint32_t subscription) override
    {
        Invoke<&INotificationService::Unsubscribe>(session, subscription);
    }

    NotificationDelivery Fetch(std::uint32_t session, std::uint32_t waitMilliseconds) override
    {
        return Invoke<&INotificationService::Fetch>(session, waitMilliseconds);
    }

    void CloseSession(std::uint32_t session) override
    {
        Invoke<&INotificationService::CloseSession>(session);
    }
};

using NotificationServiceProxyFactory = Rsc::RscServiceProxyFactory<INotificationService, NotificationServiceProxy>;

} // namespace Vela::System::Nm::Internal
