#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/IComponent.hpp>
#include <Vela/System/Kiro/IComponentFactory.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Kiro/IEnvironmentVariablesProvider.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

namespace Vela::System::Kiro
{

// Defined here, so that the type information of the public interfaces exists once in a process, in this library: casts
// between interfaces then work across libraries and never lead into one that has been unloaded.
IApplication::~IApplication() = default;
IComponent::~IComponent() = default;
IComponentFactory::~IComponentFactory() = default;
IControllerComponent::~IControllerComponent() = default;
IEnvironmentVariablesProvider::~IEnvironmentVariablesProvider() = default;
ILibrary::~ILibrary() = default;

} // namespace Vela::System::Kiro
