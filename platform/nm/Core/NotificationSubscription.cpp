#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Nm/NotificationManager.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <Core/NotificationCore.hpp>

#include <utility>

namespace Vela::System::Nm
{

namespace
{

std::shared_ptr<Internal::NotificationCore> RequireCore()
{
    auto core = Internal::NotificationCore::GetCurrent();
    if (core == nullptr)
    {
        throw Exception("AppDomain Singleton instance of type '{0}' was not created yet!",
                        GetTypeName<NotificationManager>());
    }
    return core;
}

NotificationSubscription::Callback RequireCallback(NotificationSubscription::Callback callback)
{
    if (!callback)
    {
        throw ArgumentNullException("callback");
    }
    return callback;
}

} // namespace

NotificationSubscription::NotificationSubscription(const String& pattern, Callback callback,
                                                   MissedCallback missedCallback)
    : core(RequireCore())
    , id(core->Subscribe(pattern, RequireCallback(std::move(callback)), std::move(missedCallback)))
{
}

NotificationSubscription::~NotificationSubscription()
{
    Dispose();
}

void NotificationSubscription::Dispose() noexcept
{
    if (!isDisposed.exchange(true))
    {
        core->Unsubscribe(id);
    }
}

} // namespace Vela::System::Nm
