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

void ServiceUses::Add(const ServiceProvider& provider, const String& interfaceName)
{
    UsedService use{.user = GetActingComponent(),
                    .providerKind = provider.GetKind(),
                    .provider = provider.GetName(),
                    .serviceName = provider.GetServiceName().empty() ? interfaceName : provider.GetServiceName()};
    const std::lock_guard lock(mutex);
    if (uses.size() < maximumUses)
    {
        uses.insert(std::move(use));
    }
}

std::vector<UsedService> ServiceUses::List() const
{
    const std::lock_guard lock(mutex);
    return {uses.begin(), uses.end()};
}

String ServiceUses::GetActingComponent()
{
    const auto* breadcrumb = Commons::Diagnostics::Breadcrumb::GetCurrent();
    return breadcrumb != nullptr && std::string_view(breadcrumb->GetKind()) == "component" ? breadcrumb->GetSubject()
                                                                                           : String();
}

} // namespace Vela::System::Rsc
