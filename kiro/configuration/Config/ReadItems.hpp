#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <map>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// Reads the children of the current element, which all have one name: `readItem` is called inside each of them; any
/// other child is invalid.
template <typename ReadItem>
void ReadItems(Commons::Xml::XmlReader& reader, const Commons::Xml::XmlSerializationContext& context,
               const char* itemXmlName, ReadItem&& readItem)
{
    String name;
    while (reader.ReadStartElement(name))
    {
        if (name == itemXmlName)
        {
            readItem();
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

/// Where a duplicate is written, and where the name was declared before.
inline String DescribeDuplicate(const Commons::Xml::XmlPosition& duplicate, const Commons::Xml::XmlPosition& first)
{
    return duplicate.ToString() + "; declared before in " + first.ToString();
}

/// Reads children of type Item into a table by their names.
/// @throws XmlException "<element> '{0}' is already declared!" for a name that is there already
template <typename Item>
void ReadNamedItems(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context,
                    std::map<String, Item>& items)
{
    ReadItems(
        reader, context, Item::elementXmlName,
        [&]
        {
            Item item;
            item.ReadXml(reader, context);
            const auto [existing, isNew] = items.emplace(item.name, item);
            if (!isNew)
            {
                Raise(Commons::Diagnostics::FindingCode::DuplicateName, item.position,
                      XmlException::At(DescribeDuplicate(item.position, existing->second.position),
                                       fmt::format("{0} '{1}' is already declared!", Item::elementXmlName, item.name)),
                      existing->second.position);
            }
        });
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
