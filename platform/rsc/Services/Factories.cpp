#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

namespace Vela::System::Rsc
{

RscServiceFactoryBase::RscServiceFactoryBase(String factoryName, String interfaceId)
    : name(std::move(factoryName))
    , interfaceName(std::move(interfaceId))
{
}

RscServiceFactoryBase::~RscServiceFactoryBase() = default;

const String& RscServiceFactoryBase::GetName() const noexcept
{
    return name;
}

const String& RscServiceFactoryBase::GetInterfaceName() const noexcept
{
    return interfaceName;
}

bool RscServiceFactoryBase::IsSecurityEnabled() const noexcept
{
    return isSecurityEnabled.load();
}

void RscServiceFactoryBase::SetSecurityEnabled(bool isEnabled) noexcept
{
    isSecurityEnabled.store(isEnabled);
}

RscServiceProxyFactoryBase::RscServiceProxyFactoryBase(String interfaceId, ServiceProvider provider)
    : interfaceName(std::move(interfaceId))
    , defaultProvider(std::move(provider))
{
}

RscServiceProxyFactoryBase::~RscServiceProxyFactoryBase() = default;

const String& RscServiceProxyFactoryBase::GetInterfaceName() const noexcept
{
    return interfaceName;
}

const ServiceProvider& RscServiceProxyFactoryBase::GetDefaultProvider() const noexcept
{
    return defaultProvider;
}

const String& RscServiceProxyFactoryBase::GetProviderName() const noexcept
{
    return defaultProvider.GetName();
}

} // namespace Vela::System::Rsc
