#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Chrono/Duration.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <Core/NotificationLimitsDocument.hpp>

#include <cstdint>

namespace Vela::System::Nm::Internal
{

namespace
{

constexpr const char* documentXmlName = "NmSettingsDocument";
constexpr const char* queueXmlName = "Queue";
constexpr const char* subscribersXmlName = "Subscribers";

void ReadLimit(Commons::Xml::XmlReader& reader, const char* attribute, std::size_t& limit)
{
    std::uint32_t value = 0;
    if (!reader.TryGetAttributeValue(attribute, value))
    {
        return;
    }
    if (value == 0)
    {
        throw reader.Error("The value of attribute {0} must not be 0.", attribute);
    }
    limit = value;
}

} // namespace

NotificationLimits NotificationLimitsDocument::Load(const String& path)
{
    NotificationLimitsDocument document;
    if (!path.empty())
    {
        Commons::Xml::XmlConfigDocument(documentXmlName, document).Load(path);
    }
    return document.limits;
}

void NotificationLimitsDocument::ReadXml(Commons::Xml::XmlReader& reader,
                                         Commons::Xml::XmlSerializationContext& context)
{
    String element;
    while (reader.ReadStartElement(element))
    {
        if (element == queueXmlName)
        {
            ReadLimit(reader, "maxNotifications", limits.maxQueuedNotifications);
            ReadLimit(reader, "maxBytes", limits.maxQueuedBytes);
        }
        else if (element == subscribersXmlName)
        {
            ReadLimit(reader, "maxCount", limits.maxSubscribers);
            Commons::Chrono::Duration idleTime;
            if (reader.TryGetAttributeValue("idleTime", idleTime))
            {
                limits.subscriberIdleTime = idleTime.GetMilliseconds();
            }
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, element);
        }
        reader.ReadEndElement();
    }
}

void NotificationLimitsDocument::WriteXml(Commons::Xml::XmlWriter&, Commons::Xml::XmlSerializationContext&)
{
    throw NotImplementedException("WriteXml");
}

} // namespace Vela::System::Nm::Internal
