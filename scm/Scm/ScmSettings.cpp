#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <Scm/ScmSettings.hpp>

#include <algorithm>
#include <iterator>

namespace Vela::System::Scm
{

using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;
using Commons::Xml::XmlWriter;

namespace
{

struct SwitchList
{
    const char* listXmlName;
    const char* itemXmlName;
    const char* variablePrefix;
};

constexpr SwitchList switchLists[] = {
    {"Features", "Feature", "VELA_FEATURE:"},
    {"Components", "Component", "VELA_COMPONENT:"},
    {"Packages", "Package", "VELA_PACKAGE:"},
};

constexpr const char* nameXmlName = "name";
constexpr const char* enabledXmlName = "enabled";

void ReadList(const SwitchList& list, XmlReader& reader, const XmlSerializationContext& context,
              std::map<String, String>& variables)
{
    String element;
    while (reader.ReadStartElement(element))
    {
        if (element == list.itemXmlName)
        {
            String name;
            bool isEnabled = true;
            reader.GetAttributeValue(nameXmlName, name);
            reader.TryGetAttributeValue(enabledXmlName, isEnabled);
            if (!variables.emplace(list.variablePrefix + name, isEnabled ? "true" : "false").second)
            {
                throw reader.Error("{0} '{1}' is already declared!", element, name);
            }
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, element);
        }
        reader.ReadEndElement();
    }
}

} // namespace

void ScmSettings::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    String element;
    while (reader.ReadStartElement(element))
    {
        const auto* list = std::ranges::find_if(switchLists, [&](const SwitchList& candidate)
                                                { return element == candidate.listXmlName; });
        if (list != std::end(switchLists))
        {
            ReadList(*list, reader, context, variables);
        }
        else if (element == XmlSerializationContext::includesXmlName)
        {
            context.ReadIncludesElement(reader);
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, element);
        }
        reader.ReadEndElement();
    }
}

void ScmSettings::WriteXml(XmlWriter& /*writer*/, XmlSerializationContext& /*context*/)
{
    throw NotImplementedException("WriteXml");
}

} // namespace Vela::System::Scm
