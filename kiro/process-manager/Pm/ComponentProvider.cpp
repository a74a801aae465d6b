#include <Pm/ComponentProvider.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/TypeName.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Pm
{

namespace
{

String GetKind(const IComponent& component)
{
    return GetTypeName(typeid(component));
}

} // namespace

void ComponentProvider::AddComponent(const std::shared_ptr<IComponent>& component)
{
    const String name = component->GetName();
    const bool isSingleton = component->IsSingleton();
    String kind = GetKind(*component);
    const bool isKnownOutside = FindExternal(name) != nullptr;

    const std::lock_guard lock(mutex);
    if (isKnownOutside || components.contains(name))
    {
        throw InvalidOperationException("Component '{}' yet exists", name);
    }
    if (isSingleton && kinds.contains(kind))
    {
        throw InvalidOperationException("Component type {} is a singleton and might only be instantiated once.", kind);
    }
    const auto inserted = kinds.insert(std::move(kind));
    try
    {
        components.emplace(name, component);
    }
    catch (...)
    {
        kinds.erase(inserted);
        throw;
    }
}

std::shared_ptr<IComponent> ComponentProvider::RemoveComponent(const String& name)
{
    const std::lock_guard lock(mutex);
    const auto found = components.find(name);
    if (found == components.end())
    {
        throw InvalidOperationException("Component '{}' does not exist", name);
    }
    kinds.erase(kinds.find(GetKind(*found->second)));
    std::shared_ptr<IComponent> component = std::move(found->second);
    components.erase(found);
    return component;
}

ComponentTable ComponentProvider::RemoveAllComponents()
{
    const std::lock_guard lock(mutex);
    kinds.clear();
    return std::exchange(components, {});
}

bool ComponentProvider::IsComponentKindAlreadyRegistered(const IComponent& component) const
{
    const String kind = GetKind(component);
    const std::lock_guard lock(mutex);
    return kinds.contains(kind);
}

std::shared_ptr<IComponent> ComponentProvider::GetComponent(const String& name) const
{
    {
        const std::lock_guard lock(mutex);
        if (const auto found = components.find(name); found != components.end())
        {
            return found->second;
        }
    }
    return FindExternal(name);
}

ComponentTable ComponentProvider::GetComponents() const
{
    const std::lock_guard lock(mutex);
    return components;
}

void ComponentProvider::AddExternalProvider(std::shared_ptr<IComponentProvider> provider)
{
    const std::lock_guard lock(mutex);
    externalProviders.push_back(std::move(provider));
}

void ComponentProvider::RemoveExternalProvider(const std::shared_ptr<IComponentProvider>& provider) noexcept
{
    const std::lock_guard lock(mutex);
    externalProviders.remove(provider);
}

std::shared_ptr<IComponent> ComponentProvider::FindExternal(const String& name) const
{
    std::list<std::shared_ptr<IComponentProvider>> providers;
    {
        const std::lock_guard lock(mutex);
        providers = externalProviders;
    }
    for (const auto& provider : providers)
    {
        if (auto component = provider->GetComponent(name))
        {
            return component;
        }
    }
    return nullptr;
}

} // namespace Vela::System::Kiro::Internal::Pm
