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

std::vector<String> SystemSnapshot::GetApplicationNames() const
{
    std::vector<String> names;
    names.reserve(services.size());
    for (const auto& [name, service] : services)
    {
        names.push_back(name);
    }
    return names;
}

std::vector<String> SystemSnapshot::GetComponentsOfType(const String& type) const
{
    std::vector<String> names;
    for (const Component& component : components)
    {
        if (component.type == type)
        {
            names.push_back(component.name);
        }
    }
    return names;
}

String SystemSnapshot::GetProcessNameOfComponent(const String& name) const
{
    const auto found = std::find_if(components.begin(), components.end(),
                                    [&](const Component& component) { return component.name == name; });
    return found == components.end() ? String() : found->process;
}

std::vector<Services::ComponentInfo>
SystemSnapshot::GetComponentInfos(std::vector<Services::ComponentInfo> defaultInfos) const
{
    auto infos = std::move(defaultInfos);
    infos.reserve(infos.size() + components.size());
    for (const Component& component : components)
    {
        auto& info = infos.emplace_back();
        info.name = component.name;
        info.type = component.type;
        info.library = component.library;
        info.startOrder = component.startOrder;
        info.isRequired = component.isRequired;
        info.isEnabled = component.isEnabled;
    }
    return infos;
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
