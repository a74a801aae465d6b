#pragma once

#include <Vela/System/Kiro/Api.hpp>

#include <memory>

namespace Vela::System::Kiro
{

class IApplication;
class IComponent;

/// Creates the components of a library by type name. The order of the virtual operations is a binary contract with
/// component libraries.
class VELA_KIRO_API IComponentFactory
{
public:
    virtual ~IComponentFactory();

    /// True when the factory knows the type.
    [[nodiscard]] virtual bool ContainsComponentType(const String& componentType) = 0;

    /// Makes a component; the caller owns it.
    /// @throws InvalidOperationException for an unknown type; besides, whatever the component's constructor throws
    virtual std::shared_ptr<IComponent> CreateComponent(IApplication& application, const String& componentType,
                                                        const String& componentName) = 0;
};

} // namespace Vela::System::Kiro
