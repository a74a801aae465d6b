#include <Vela/System/Nm/NotificationManager.hpp>

#include <Core/NotificationCore.hpp>

#include <utility>

namespace Vela::System::Nm
{

NotificationManager::NotificationManager(std::shared_ptr<Internal::NotificationCore> notificationCore) noexcept
    : core(std::move(notificationCore))
{
}

NotificationManager::~NotificationManager() = default;

bool NotificationManager::HasBroker() const noexcept
{
    return core->HasBroker();
}

} // namespace Vela::System::Nm
