#pragma once

#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

#include <Diagnostics/LogManagerData.hpp>

#include <functional>
#include <memory>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// The log configuration file: levels by category, and the sinks.
/// @code
/// <LogConfigurationDocument>
///   <Levels>
///     <Level category="Vela.System.Rsc" level="Debug"/>
///   </Levels>
///   <Sinks>
///     <Console level="Warning"/>
///     <File directory="log" level="Trace" maxSize="1000000" maxFiles="5"/>
///     <Syslog level="Error"/>
///   </Sinks>
/// </LogConfigurationDocument>
/// @endcode
class LogConfiguration : public Xml::IXmlSerializable
{
public:
    /// @throws XmlException
    LogConfiguration(LogLevel defaultLevel, const String& file);

    void ReadXml(Xml::XmlReader& reader, Xml::XmlSerializationContext& context) override;
    void WriteXml(Xml::XmlWriter& writer, Xml::XmlSerializationContext& context) override;

    /// Makes the sinks.
    /// @throws Exception when a log file cannot be opened
    [[nodiscard]] std::shared_ptr<LogManagerData> MakeData() const;

private:
    using SinkMaker = std::function<std::unique_ptr<LogSink>()>;

    void ReadLevels(Xml::XmlReader& reader, const Xml::XmlSerializationContext& context);
    void ReadSinks(Xml::XmlReader& reader, const Xml::XmlSerializationContext& context);
    static SinkMaker ReadFileSink(Xml::XmlReader& reader, const Xml::XmlSerializationContext& context, LogLevel level);

    LogLevels levels;
    std::vector<SinkMaker> sinkMakers;
};

} // namespace Vela::System::Commons::Diagnostics
