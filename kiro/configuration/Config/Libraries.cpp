#include <Config/Libraries.hpp>
#include <Config/ReadItems.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

void Libraries::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    ReadNamedItems(reader, context, items);
}

bool Libraries::Equals(const Libraries& other) const
{
    return EqualItems(items, other.items);
}

bool Libraries::AddItem(const Library& library)
{
    return items.emplace(library.name, library).second;
}

const std::map<String, Library>& Libraries::GetItems() const noexcept
{
    return items;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
