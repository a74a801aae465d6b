#include <Config/Components.hpp>
#include <Config/ReadItems.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm::Config
{

using Commons::Diagnostics::FindingCode;

void Components::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    ReadItems(reader, context, Component::elementXmlName,
              [&]
              {
                  Component component;
                  component.ReadXml(reader, context);
                  AddItem(std::move(component));
              });
}

bool Components::Equals(const Components& other) const
{
    return EqualItems(items, other.items) && EqualItems(multiProcessItems, other.multiProcessItems);
}

void Components::AddItem(Component component)
{
    if (AddToExisting(items, component) || AddToExisting(multiProcessItems, component))
    {
        return;
    }
    Map& target = component.process == multiProcessIndicator ? multiProcessItems : items;
    String name = component.name;
    target.emplace(std::move(name), std::move(component));
}

/// Answers false when the map has no component of that name.
bool Components::AddToExisting(Map& map, const Component& component) const
{
    const auto existing = map.find(component.name);
    if (existing == map.end())
    {
        return false;
    }
    if (!existing->second.isStatic)
    {
        Raise(FindingCode::DuplicateComponent, component.position,
              InvalidConfigException::At(DescribeDuplicate(component.position, existing->second.position),
                                         fmt::format("Duplicated component name occurs: '{0}'", component.name)),
              existing->second.position);
        return true;
    }
    CopyPropertiesOfStaticComponent(component, existing->second);
    return true;
}

void Components::CopyPropertiesOfStaticComponent(const Component& from, Component& to) const
{
    if (!from.settings.path.empty())
    {
        to.settings.path = from.settings.path;
    }
    if (!from.process.empty())
    {
        to.process = from.process;
    }
}

bool Components::HasItemInProcessYet(const String& type, const String& process) const
{
    const auto found =
        std::find_if(items.begin(), items.end(),
                     [&](const auto& item) { return item.second.process == process && item.second.type == type; });
    if (found == items.end())
    {
        return false;
    }
    Warn(log, FindingCode::OverruledGeneric, found->second.position,
         "Component '{}' of type '{}' was explicitly configured in process '{}' but also through generic "
         "configuration using '*' as process name.",
         found->second.name, type, process);
    return true;
}

void Components::ResolveEmptyProcessItems(Processes& processes) const
{
    std::set<String> used;
    for (const auto& [name, component] : items)
    {
        if (component.process != multiProcessIndicator)
        {
            used.insert(component.process);
        }
    }
    std::vector<String> unused;
    for (const auto& [name, process] : processes.GetItems())
    {
        if (!used.contains(name))
        {
            unused.push_back(name);
        }
    }
    for (const String& name : unused)
    {
        processes.RemoveUnusedProcess(name);
    }
}

void Components::ResolveMultiProcessItems(const Processes& processes, bool singleProcess)
{
    const String referenceName = Singleton<AppDomain>::GetInstance().GetApplicationName();
    for (const auto& [genericName, generic] : multiProcessItems)
    {
        bool hasProcess = false;
        for (const auto& [processName, process] : processes.GetItems())
        {
            const bool isReference = processName.empty() || processName == referenceName;
            if (isReference || !singleProcess)
            {
                hasProcess = true;
                AddCopy(generic,
                        isReference ? genericName : fmt::format("{}{}{}", genericName, processSeparator, processName),
                        processName);
            }
        }
        WarnOfIneffectiveDeclaration(generic, hasProcess);
    }
}

/// Nothing that a declaration says may be lost in silence.
void Components::WarnOfIneffectiveDeclaration(const Component& generic, bool hasProcess) const
{
    const Component defaults;
    if (generic.isRequired != defaults.isRequired || generic.isEnabled != defaults.isEnabled ||
        generic.isFinal != defaults.isFinal || generic.hasStartOrder || !generic.settings.path.empty())
    {
        WarnAt(log, FindingCode::IneffectiveGeneric, generic.position,
               "Generic component '{}': only name, type and library are copied into the processes, its other "
               "attributes and its settings have no effect.",
               generic.name);
    }
    if (!hasProcess)
    {
        WarnAt(log, FindingCode::IneffectiveGeneric, generic.position,
               "Generic component '{}' is not created: there is no configured process to copy it into.", generic.name);
    }
}

void Components::AddCopy(const Component& generic, const String& name, const String& process)
{
    if (HasItemInProcessYet(generic.type, process))
    {
        return;
    }
    Component copy(name, generic.type, generic.library, Settings());
    copy.process = process;
    copy.position = generic.position;
    const auto [item, isNew] = items.emplace(name, copy);
    if (!isNew)
    {
        Warn(log, FindingCode::OverruledGeneric, item->second.position,
             "Component '{}' of type '{}' keeps its name, the generic component '{}' is not copied into process '{}'.",
             name, item->second.type, generic.name, process);
    }
}

const Components::Map& Components::GetItems() const noexcept
{
    return items;
}

const Components::Map& Components::GetMultiProcessItems() const noexcept
{
    return multiProcessItems;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
