#pragma once

#include <Vela/System/Kiro/IComponentFactory.hpp>

#include <map>
#include <vector>

namespace Vela::System::Kiro
{

/// Makes one component of one type.
using ComponentFactoryMethod = std::shared_ptr<IComponent> (*)(IApplication& application, const String& componentName);

/// A factory that is a table from type names to methods. It is filled while its library is constructed; afterwards it
/// may be used on any thread.
class VELA_KIRO_API ComponentFactory : public IComponentFactory
{
public:
    ComponentFactory();
    ~ComponentFactory() override;

    /// The first registration of a type name counts; later ones are ignored.
    void AddFactoryMethod(const String& componentType, ComponentFactoryMethod factoryMethod);

    /// All type names, in byte order: for tools. A factory of another class need not be able to tell.
    [[nodiscard]] std::vector<String> GetComponentTypes() const;

    [[nodiscard]] bool ContainsComponentType(const String& componentType) override;
    std::shared_ptr<IComponent> CreateComponent(IApplication& application, const String& componentType,
                                                const String& componentName) override;

private:
    std::map<String, ComponentFactoryMethod> factoryMethods;
};

} // namespace Vela::System::Kiro
