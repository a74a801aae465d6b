#include <Config/KiroConfiguration.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;

void KiroConfiguration::ReadXml(XmlReader& reader, XmlSerializationContext& context)
{
    String name;
    while (reader.ReadStartElement(name))
    {
        if (name == XmlSerializationContext::includesXmlName)
        {
            context.ReadIncludesElement(reader);
        }
        else if (name == Processes::elementXmlName)
        {
            processes.ReadXml(reader, context);
        }
        else if (name == Libraries::elementXmlName)
        {
            libraries.ReadXml(reader, context);
        }
        else if (name == Components::elementXmlName)
        {
            components.ReadXml(reader, context);
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

bool KiroConfiguration::Equals(const KiroConfiguration& other) const
{
    return processes.Equals(other.processes) && libraries.Equals(other.libraries) &&
           components.Equals(other.components);
}

void KiroConfiguration::ResolveMultiProcessItems(bool singleProcess)
{
    components.ResolveEmptyProcessItems(processes);
    components.ResolveMultiProcessItems(processes, singleProcess);
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
