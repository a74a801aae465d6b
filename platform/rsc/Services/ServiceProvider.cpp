#include <Vela/System/Rsc/ServiceProvider.hpp>

#include <utility>

namespace Vela::System::Rsc
{

ServiceProvider::ServiceProvider(Kind providerKind, String providerName)
    : kind(providerKind)
    , name(std::move(providerName))
{
}

ServiceProvider ServiceProvider::Process(const String& applicationName)
{
    return {applicationName.empty() ? Kind::None : Kind::Process, applicationName};
}

ServiceProvider ServiceProvider::MainProcess()
{
    return {Kind::MainProcess, "main process"};
}

ServiceProvider ServiceProvider::Component(const String& componentName, const String& serviceName)
{
    ServiceProvider provider(componentName.empty() ? Kind::None : Kind::Component, componentName);
    provider.serviceName = serviceName;
    return provider;
}

ServiceProvider ServiceProvider::LocalPort(std::uint16_t port)
{
    ServiceProvider provider(Kind::LocalPort, std::to_string(port));
    provider.port = port;
    return provider;
}

ServiceProvider::Kind ServiceProvider::GetKind() const noexcept
{
    return kind;
}

const String& ServiceProvider::GetName() const noexcept
{
    return name;
}

const String& ServiceProvider::GetServiceName() const noexcept
{
    return serviceName;
}

std::uint16_t ServiceProvider::GetPort() const noexcept
{
    return port;
}

} // namespace Vela::System::Rsc
