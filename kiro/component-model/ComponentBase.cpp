#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

namespace Vela::System::Kiro
{

std::uint32_t ComponentBase::GetDefaultStartOrder() noexcept
{
    return 100000;
}

ComponentBase::ComponentBase(IApplication& application, ILibrary& library, const String& name,
                             ComponentCategory category, std::uint32_t startOrder, bool isSingleton)
    : application(application)
    , library(library)
    , name(name)
    , category(category)
    , startOrder(startOrder)
    , isSingleton(isSingleton)
{
    if (category == ComponentCategory::System || category == ComponentCategory::Service)
    {
        isSystemComponent = true;
    }
    else if (category == ComponentCategory::Custom &&
             startOrder >= maxComponentStartOrder - customComponentStartOrderShift)
    {
        this->startOrder -= customComponentStartOrderShift;
    }
}

ComponentBase::~ComponentBase() = default;

IApplication& ComponentBase::GetApplication()
{
    return application;
}

ILibrary& ComponentBase::GetLibrary()
{
    return library;
}

String ComponentBase::GetName() const
{
    return name;
}

BasicVersion ComponentBase::GetVersion() const
{
    return library.GetVersion();
}

ComponentCategory ComponentBase::GetCategory() const
{
    return category;
}

std::uint32_t ComponentBase::GetStartOrder() const
{
    return startOrder;
}

bool ComponentBase::IsSingleton() const
{
    return isSingleton;
}

bool ComponentBase::IsSystemComponent() const
{
    return isSystemComponent;
}

void ComponentBase::Initialize()
{
}

void ComponentBase::SubscribeServices()
{
}

void ComponentBase::LoadSettings(const String& /*settingsPath*/)
{
}

void ComponentBase::SetupSettings()
{
}

void ComponentBase::PublishServices()
{
}

void ComponentBase::LoadConfig()
{
}

void ComponentBase::SetupConfig()
{
}

void ComponentBase::ResetConfig()
{
}

void ComponentBase::Dispose()
{
}

void ComponentBase::PowerDown()
{
}

void ComponentBase::PublishComponentService(const char* serviceName, Rsc::IRscServiceFactory* serviceFactory)
{
    Rsc::ServiceManager::PublishComponentService(name, serviceName, serviceFactory);
}

} // namespace Vela::System::Kiro
