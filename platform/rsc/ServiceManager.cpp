#include "RscRuntime.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>
#include <Vela/System/Rsc/ServiceUsage.hpp>
#include <Vela/TypeName.hpp>

#include <utility>

namespace Vela::System::Rsc
{

namespace
{

std::shared_ptr<RscRuntime> GetRuntime()
{
    auto runtime = RscRuntime::TryGetInstance();
    if (runtime == nullptr)
    {
        throw Exception("AppDomain Singleton instance of type '{0}' was not created yet!", GetTypeName<RscManager>());
    }
    return runtime;
}

void CheckProvider(const ServiceProvider& provider)
{
    if (provider.GetKind() == ServiceProvider::Kind::None)
    {
        throw ArgumentException("Service does not specify a service provider");
    }
}

bool Withdraw(const ServiceKey& key)
{
    const auto runtime = RscRuntime::TryGetInstance();
    return runtime != nullptr ? runtime->Unpublish(key) : RscRuntime::UnpublishLeft(key);
}

} // namespace

void ServiceManager::PublishService(const String& providerName, const String& interfaceName,
                                    IRscServiceFactory& factory)
{
    GetRuntime()->Publish({providerName, interfaceName}, factory);
}

void ServiceManager::PublishComponentService(const String& componentName, const char* serviceName,
                                             IRscServiceFactory* factory)
{
    if (factory == nullptr)
    {
        throw ArgumentNullException("factory");
    }
    if (componentName.empty())
    {
        throw ArgumentNullException("componentName");
    }
    const bool isNamed = serviceName != nullptr && *serviceName != '\0';
    GetRuntime()->Publish({componentName, isNamed ? String(serviceName) : factory->GetInterfaceName()}, *factory);
}

bool ServiceManager::UnpublishService(const String& providerName, const String& interfaceName)
{
    if (interfaceName.empty())
    {
        return true;
    }
    // Not a temporary in a condition: the compiler does not clean one up rightly when its second text cannot be copied.
    const ServiceKey key{providerName, interfaceName};
    return Withdraw(key);
}

bool ServiceManager::UnpublishComponentServices(const String& componentName)
{
    if (componentName.empty())
    {
        return true;
    }
    const ServiceKey key{componentName, {}};
    return Withdraw(key);
}

RscServiceBinding ServiceManager::Bind(const RscServiceProxyFactoryBase& factory, const ServiceProvider& provider)
{
    CheckProvider(provider);
    const auto runtime = GetRuntime();
    // This process publishes its services before it looks for them: there is nothing to wait for.
    const auto timeout =
        runtime->GetFinder().IsOwn(provider) ? std::chrono::milliseconds(0) : runtime->GetOptions().connectTimeout;
    String why;
    if (auto binding = runtime->Find(provider, factory.GetInterfaceName(), timeout, {}, why))
    {
        return *std::move(binding);
    }
    InvalidOperationException exception("Could not retrieve service '{0}' from service provider '{1}'.",
                                        factory.GetInterfaceName(), provider.GetName());
    exception.SetInnerText(std::move(why));
    throw exception;
}

std::optional<RscServiceBinding> ServiceManager::TryBind(const RscServiceProxyFactoryBase& factory,
                                                         const ServiceProvider& provider,
                                                         std::chrono::milliseconds timeout,
                                                         std::span<const int> wakeDescriptors)
{
    CheckProvider(provider);
    String why;
    return GetRuntime()->Find(provider, factory.GetInterfaceName(), timeout, wakeDescriptors, why);
}

std::vector<PublishedService> ServiceUsage::GetPublished()
{
    const auto runtime = RscRuntime::TryGetInstance();
    return runtime != nullptr ? runtime->GetPublished() : std::vector<PublishedService>();
}

std::vector<UsedService> ServiceUsage::GetUsed()
{
    const auto runtime = RscRuntime::TryGetInstance();
    return runtime != nullptr ? runtime->GetUsed() : std::vector<UsedService>();
}

} // namespace Vela::System::Rsc
