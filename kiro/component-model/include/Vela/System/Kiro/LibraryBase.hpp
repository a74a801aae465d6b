#pragma once

#include <Vela/AppDomain.hpp>
#include <Vela/BasicVersion.hpp>
#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/ComponentFactory.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

namespace Vela::System::Kiro
{

/// The ready-made base of component libraries:
/// @code
/// class PumpLibrary : public LibraryBase
/// {
/// public:
///     explicit PumpLibrary(AppDomain& appDomain)
///         : LibraryBase(appDomain, BasicVersion(1, 0, 2))
///     {
///         AddComponentFactoryMethod("Pump", &Pump::Create);
///     }
/// };
/// @endcode
class VELA_KIRO_API LibraryBase : public ILibrary
{
public:
    /// Connects the library with its host, so that its code logs into the host's log and publishes through the host's
    /// remoting. The first application domain of a process counts.
    LibraryBase(AppDomain& appDomain, const BasicVersion& libraryVersion);
    LibraryBase(const LibraryBase&) = delete;
    LibraryBase& operator=(const LibraryBase&) = delete;
    ~LibraryBase() override;

    /// Tells how components of a type are made; called once per type in the constructor of the derived class. The
    /// first registration of a type name counts; later ones are ignored.
    void AddComponentFactoryMethod(const String& componentType, ComponentFactoryMethod factoryMethod);

    [[nodiscard]] IComponentFactory& GetComponentFactory() override;
    [[nodiscard]] const BasicVersion& GetVersion() const override;

private:
    ComponentFactory componentFactory;
    BasicVersion version;
};

} // namespace Vela::System::Kiro
