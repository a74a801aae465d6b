#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>
#include <Vela/System/Rsc/ServiceProvider.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <span>

namespace Vela::System::Rsc
{

/// Publishes the services of this process and finds those of all processes.
///
/// Thread-safe. Without a remoting manager every operation but the withdrawals throws "AppDomain Singleton instance of
/// type '{0}' was not created yet!".
class VELA_RSC_API ServiceManager
{
public:
    ServiceManager() = delete;

    /// Publishes a service of this process; it can be called as soon as this returns, or earlier.
    /// @param providerName  empty: the process; otherwise the component on whose behalf it is published
    /// @param interfaceName  the name under which it is found
    /// @throws InvalidOperationException when the provider publishes that name already
    static void PublishService(const String& providerName, const String& interfaceName, IRscServiceFactory& factory);
    /// Publishes a service on behalf of a component, which other processes find by the component's name.
    /// @param serviceName  null or empty: the interface's name
    /// @throws ArgumentNullException without a factory; InvalidOperationException when it is published already
    static void PublishComponentService(const String& componentName, const char* serviceName,
                                        IRscServiceFactory* factory);

    /// Withdraws a service: new calls fail, calls in progress may end within the close time-out, then its stub and
    /// implementation are destroyed. Not from inside a call of that service.
    /// @return false when a call is still in progress: the service's code and what it uses must stay where they are,
    ///         and the implementation is destroyed when that call ends. True for a service that is not published. After
    ///         the remoting manager: whether the service's calls that outlived it have ended.
    static bool UnpublishService(const String& providerName, const String& interfaceName);
    /// The same for all services of a component, with one time limit.
    static bool UnpublishComponentServices(const String& componentName);

    /// A proxy to a service of the factory's default provider.
    /// @throws ArgumentException "Service does not specify a service provider" when the factory names none
    /// @throws InvalidOperationException "Could not retrieve service '{0}' from service provider '{1}'."
    template <typename Interface, typename Proxy>
    static std::shared_ptr<Interface> GetService(const RscServiceProxyFactory<Interface, Proxy>& factory)
    {
        return factory.CreateServiceProxy(Bind(factory, factory.GetDefaultProvider()));
    }

    /// A proxy to a service of a provider. Waits up to the connect time-out for another process to come up and publish
    /// it; a service of this process must be there.
    /// @throws ArgumentException, InvalidOperationException as above
    template <typename Interface, typename Proxy>
    static std::shared_ptr<Interface> GetService(const RscServiceProxyFactory<Interface, Proxy>& factory,
                                                 const ServiceProvider& provider)
    {
        return factory.CreateServiceProxy(Bind(factory, provider));
    }

    /// A proxy to a service, or null when it cannot be reached within `timeout` (0: tries once).
    /// @param wakeDescriptors  the wait ends as soon as one of them is readable, such as the pidfd of a child that has
    ///                         exited
    /// @throws ArgumentException as above
    template <typename Interface, typename Proxy>
    static std::shared_ptr<Interface> TryGetService(const RscServiceProxyFactory<Interface, Proxy>& factory,
                                                    const ServiceProvider& provider, std::chrono::milliseconds timeout,
                                                    std::span<const int> wakeDescriptors = {})
    {
        auto binding = TryBind(factory, provider, timeout, wakeDescriptors);
        return binding ? factory.CreateServiceProxy(*std::move(binding)) : nullptr;
    }

private:
    static RscServiceBinding Bind(const RscServiceProxyFactoryBase& factory, const ServiceProvider& provider);
    static std::optional<RscServiceBinding> TryBind(const RscServiceProxyFactoryBase& factory,
                                                    const ServiceProvider& provider, std::chrono::milliseconds timeout,
                                                    std::span<const int> wakeDescriptors);
};

} // namespace Vela::System::Rsc
