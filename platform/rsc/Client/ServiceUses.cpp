#include "Client/ServiceUses.hpp"

#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>

#include <cstddef>
#include <string_view>
#include <utility>

namespace Vela::System::Rsc
{

namespace
{

/// A component that makes up names for what it looks up must not fill the memory.
constexpr std::size_t maximumUses = 1024;

} // namespace

void ServiceUses::Add(const ServiceProvider& provider, const String& interfaceName, const String& process)
{
    Use use{GetActingComponent(), process,
            provider.GetKind() == ServiceProvider::Kind::Component ? provider.GetName() : String(),
            provider.GetServiceName().empty() ? interfaceName : provider.GetServiceName()};
    {
        const std::lock_guard lock(mutex);
        if (uses.size() < maximumUses)
        {
            uses.insert(std::move(use));
            return;
        }
        if (isFull || uses.contains(use))
        {
            return;
        }
        isFull = true;
    }
    log.Warning("The process has looked up more than {0} services; diagnostics show the first ones only.", maximumUses);
}

std::vector<UsedService> ServiceUses::List() const
{
    std::vector<UsedService> list;
    const std::lock_guard lock(mutex);
    for (const auto& [user, process, provider, serviceName] : uses)
    {
        list.push_back({.user = user, .process = process, .provider = provider, .serviceName = serviceName});
    }
    return list;
}

String ServiceUses::GetActingComponent()
{
    using Commons::Diagnostics::Breadcrumb;
    const auto* breadcrumb = Breadcrumb::GetCurrent();
    return breadcrumb != nullptr && std::string_view(breadcrumb->GetKind()) == Breadcrumb::component
               ? breadcrumb->GetSubject()
               : String();
}

} // namespace Vela::System::Rsc
