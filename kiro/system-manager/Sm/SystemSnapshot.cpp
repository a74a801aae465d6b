#include <Sm/SystemSnapshot.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

std::shared_ptr<const SystemSnapshot> SystemSnapshot::Make(const ServiceTable& services,
                                                           const Data::ExecutionList& executionList)
{
    auto snapshot = std::make_shared<SystemSnapshot>();
    snapshot->services = services;
    snapshot->components.reserve(executionList.size());
    for (const auto& [startOrder, entry] : executionList)
    {
        const Data::ComponentData& component = *entry.component;
        snapshot->components.push_back({component.name, component.type, component.library, entry.process->name,
                                        startOrder, component.isRequired, component.isEnabled});
    }
    return snapshot;
}

void PublishedSnapshot::Publish(std::shared_ptr<const SystemSnapshot> newSnapshot)
{
    // The old one is released after the lock: its last reference may end connections.
    const std::lock_guard lock(mutex);
    snapshot.swap(newSnapshot);
}

std::shared_ptr<const SystemSnapshot> PublishedSnapshot::Get() const
{
    const std::lock_guard lock(mutex);
    return snapshot;
}

} // namespace Vela::System::Kiro::Internal::Sm
