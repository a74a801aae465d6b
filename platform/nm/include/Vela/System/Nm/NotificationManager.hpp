#pragma once

#include <Vela/AppDomainSingleton.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Nm/Api.hpp>

#include <memory>

namespace Vela::System::Nm
{

namespace Internal
{
class NotificationCore;
}

/// A process's part in the notifications, an app-domain singleton made and disposed by NotificationManagerSetup.
/// Whoever wants to know whether notifications work in this process asks for it:
/// `AppDomainSingleton<NotificationManager>::TryGetInstance()`.
class VELA_NM_API NotificationManager
{
public:
    explicit NotificationManager(std::shared_ptr<Internal::NotificationCore> notificationCore) noexcept;
    NotificationManager(const NotificationManager&) = delete;
    NotificationManager& operator=(const NotificationManager&) = delete;
    ~NotificationManager();

    /// Whether the broker lives in this process, as it does in the main process.
    [[nodiscard]] bool HasBroker() const noexcept;

private:
    const std::shared_ptr<Internal::NotificationCore> core;
};

} // namespace Vela::System::Nm
