#pragma once

#include <Pm/IComponentProvider.hpp>

#include <list>
#include <mutex>
#include <set>

namespace Vela::System::Kiro::Internal::Pm
{

/// The components of a process; holds the reference of record of each. Thread-safe; the lock is never held while code
/// of a component runs.
class ComponentProvider : public IComponentProvider
{
public:
    /// @throws InvalidOperationException when there is a component of that name, or one of the same type and the type
    ///         is a singleton
    void AddComponent(const std::shared_ptr<IComponent>& component);
    /// Drops the reference of record and hands it to the caller.
    /// @throws InvalidOperationException when there is no component of that name
    std::shared_ptr<IComponent> RemoveComponent(const String& name);
    /// Takes all components out and hands them to the caller.
    ComponentTable RemoveAllComponents();
    /// True when a component of the same run-time type is in the own table.
    [[nodiscard]] bool IsComponentKindAlreadyRegistered(const IComponent& component) const;

    /// Looks in the own table first, then asks the external providers in the order in which they were added.
    [[nodiscard]] std::shared_ptr<IComponent> GetComponent(const String& name) const override;
    /// The own table.
    [[nodiscard]] ComponentTable GetComponents() const override;

    void AddExternalProvider(std::shared_ptr<IComponentProvider> provider);
    /// Removes each entry of the same object; none is fine.
    void RemoveExternalProvider(const std::shared_ptr<IComponentProvider>& provider) noexcept;

private:
    [[nodiscard]] std::shared_ptr<IComponent> FindExternal(const String& name) const;

    mutable std::mutex mutex;
    ComponentTable components;
    /// Readable type name of each entry of `components`.
    std::multiset<String> kinds;
    std::list<std::shared_ptr<IComponentProvider>> externalProviders;
};

} // namespace Vela::System::Kiro::Internal::Pm
