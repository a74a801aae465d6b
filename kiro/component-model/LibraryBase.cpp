#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Kiro/LibraryBase.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

namespace Vela::System::Kiro
{

LibraryBase::LibraryBase(AppDomain& appDomain, const BasicVersion& libraryVersion)
    : version(libraryVersion)
{
    if (Singleton<AppDomain>::TryGetInstance() == nullptr)
    {
        Singleton<AppDomain>::SetInstance(appDomain);
    }
    Commons::Diagnostics::LogManager::AssignAppDomain(appDomain);
    Rsc::RscManager::AssignAppDomain(appDomain);
}

LibraryBase::~LibraryBase() = default;

void LibraryBase::AddComponentFactoryMethod(const String& componentType, ComponentFactoryMethod factoryMethod)
{
    componentFactory.AddFactoryMethod(componentType, factoryMethod);
}

IComponentFactory& LibraryBase::GetComponentFactory()
{
    return componentFactory;
}

const BasicVersion& LibraryBase::GetVersion() const
{
    return version;
}

} // namespace Vela::System::Kiro
