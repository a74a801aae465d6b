#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Chrono/Duration.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

#include <unistd.h>

#include <cstdint>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;
using Commons::Diagnostics::FindingCode;
using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;

namespace
{

/// The document's root element "RscSettingsDocument":
///
///     <RscSettingsDocument>
///       <Limits maxRequestSize="1048576" maxResponseSize="16777216" maxConnections="128"
///         maxConnectionsPerProcess="16"/>
///       <Timeouts call="10s" connect="3s" close="2s" frame="5s"/>
///       <Services>
///         <Service name="Plant.ITankService" security="true"/>
///       </Services>
///     </RscSettingsDocument>
///
/// All elements are optional, and so are the limits and times.
class RscSettingsDocument final : public Commons::Xml::IXmlSerializable
{
public:
    explicit RscSettingsDocument(RscManagerOptions& managerOptions)
        : options(managerOptions)
    {
    }

    void ReadXml(XmlReader& reader, XmlSerializationContext& context) override
    {
        String name;
        while (reader.ReadStartElement(name))
        {
            if (name == "Limits")
            {
                ReadSize(reader, "maxRequestSize", minMessageSize, options.maxRequestSize);
                ReadSize(reader, "maxResponseSize", minMessageSize, options.maxResponseSize);
                ReadSize(reader, "maxConnections", minConnections, options.maxConnections);
                ReadSize(reader, "maxConnectionsPerProcess", 2, options.maxConnectionsPerProcess);
            }
            else if (name == "Timeouts")
            {
                ReadTime(reader, "call", minCallTimeout, options.callTimeout);
                ReadTime(reader, "connect", 1ms, options.connectTimeout);
                ReadTime(reader, "close", 1ms, options.closeTimeout);
                ReadTime(reader, "frame", 1ms, options.frameTimeout);
            }
            else if (name == "Services")
            {
                ReadServices(reader, context);
            }
            else
            {
                context.InvalidXmlElementOccurs(reader, name);
            }
            reader.ReadEndElement();
        }
    }

    void WriteXml(Commons::Xml::XmlWriter&, XmlSerializationContext&) override
    {
        throw NotImplementedException("WriteXml");
    }

private:
    static constexpr std::uint32_t maxSize = 1U << 30U;
    /// Notifications travel together, up to some 256 KiB of them.
    static constexpr std::uint32_t minMessageSize = 1U << 19U;
    /// The main process alone needs two of them, and whoever asks the process something one more.
    static constexpr std::uint32_t minConnections = 4;
    /// Notifications are fetched again after half of it.
    static constexpr std::chrono::milliseconds minCallTimeout{100};

    static void ReadSize(XmlReader& reader, const char* attribute, std::uint32_t min, std::size_t& size)
    {
        std::uint32_t value = 0;
        if (!reader.TryGetAttributeValue(attribute, value))
        {
            return;
        }
        if (value < min || value > maxSize)
        {
            reader.Raise(FindingCode::InvalidValue, reader.Error("Attribute '{}' must be between {} and {}, not {}.",
                                                                 attribute, min, maxSize, value));
        }
        size = value;
    }

    static void ReadTime(XmlReader& reader, const char* attribute, std::chrono::milliseconds min,
                         std::chrono::milliseconds& time)
    {
        Commons::Chrono::Duration value;
        if (!reader.TryGetAttributeValue(attribute, value))
        {
            return;
        }
        if (value.GetMilliseconds() < min || value.GetMilliseconds() > 24h)
        {
            reader.Raise(FindingCode::InvalidValue,
                         reader.Error("Attribute '{}' must be between {} ms and 24 h.", attribute, min.count()));
        }
        time = value.GetMilliseconds();
    }

    void ReadServices(XmlReader& reader, XmlSerializationContext& context)
    {
        String element;
        while (reader.ReadStartElement(element))
        {
            if (element == "Service")
            {
                String name;
                reader.GetAttributeValue("name", name);
                reader.GetAttributeValue("security", options.serviceSecurity[name]);
            }
            else
            {
                context.InvalidXmlElementOccurs(reader, element);
            }
            reader.ReadEndElement();
        }
    }

    RscManagerOptions& options;
};

} // namespace

RscManagerOptions RscManagerOptions::Load(const String& path)
{
    RscManagerOptions options;
    if (path.empty())
    {
        return options;
    }
    if (::access(path.c_str(), F_OK) != 0)
    {
        if (path == defaultFileName)
        {
            return options;
        }
        throw NotExistException("Remoting settings file '{}' does not exist.", path);
    }
    RscSettingsDocument document(options);
    Commons::Xml::XmlConfigDocument("RscSettingsDocument", document).Load(path);
    return options;
}

} // namespace Vela::System::Rsc
