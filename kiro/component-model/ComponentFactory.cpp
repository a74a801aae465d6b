#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/ComponentFactory.hpp>
#include <Vela/System/Kiro/IComponent.hpp>

namespace Vela::System::Kiro
{

ComponentFactory::ComponentFactory() = default;
ComponentFactory::~ComponentFactory() = default;

void ComponentFactory::AddFactoryMethod(const String& componentType, ComponentFactoryMethod factoryMethod)
{
    factoryMethods.emplace(componentType, factoryMethod);
}

std::vector<String> ComponentFactory::GetComponentTypes() const
{
    std::vector<String> types;
    for (const auto& [type, method] : factoryMethods)
    {
        types.push_back(type);
    }
    return types;
}

bool ComponentFactory::ContainsComponentType(const String& componentType)
{
    return factoryMethods.contains(componentType);
}

std::shared_ptr<IComponent> ComponentFactory::CreateComponent(IApplication& application, const String& componentType,
                                                              const String& componentName)
{
    const auto found = factoryMethods.find(componentType);
    if (found == factoryMethods.end())
    {
        throw InvalidOperationException("{0}: Can't create component '{1}' of type '{2}', because no registered "
                                        "factory method for this type exists.",
                                        "CreateComponent", componentName, componentType);
    }
    return found->second(application, componentName);
}

} // namespace Vela::System::Kiro
