#include <Config/Processes.hpp>
#include <Config/ReadItems.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

void Processes::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    ReadNamedItems(reader, context, items);
}

bool Processes::Equals(const Processes& other) const
{
    return EqualItems(items, other.items);
}

bool Processes::AddItem(const Process& process)
{
    return items.emplace(process.name, process).second;
}

void Processes::RemoveUnusedProcess(const String& name)
{
    const auto found = items.find(name);
    if (found == items.end() || found->second.isExternal)
    {
        return;
    }
    const String& binaryPath = found->second.binaryPath;
    if (binaryPath.empty() || binaryPath.find(applicationBinaryName) != String::npos)
    {
        if (auto* observer = Commons::Diagnostics::LoadObserver::TryGet())
        {
            observer->OnFinding({Commons::Diagnostics::FindingCode::DroppedProcess,
                                 fmt::format("Process '{}' has no component of its own: its entry is dropped.", name),
                                 found->second.position});
        }
        items.erase(found);
    }
}

const std::map<String, Process>& Processes::GetItems() const noexcept
{
    return items;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
