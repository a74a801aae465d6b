#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

LoadObserver* present = nullptr;

} // namespace

LoadObserver::~LoadObserver() = default;

void LoadObserver::OnAttribute(const Xml::XmlPosition&, const String&, const String&, const String&)
{
}

void LoadObserver::OnVariableUsed(const String&)
{
}

LoadObserver* LoadObserver::TryGet() noexcept
{
    return present;
}

LoadObserver::Scope::Scope(LoadObserver& observer) noexcept
    : before(present)
{
    present = &observer;
}

LoadObserver::Scope::~Scope()
{
    present = before;
}

} // namespace Vela::System::Commons::Diagnostics
