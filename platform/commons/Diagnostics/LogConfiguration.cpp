#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <Diagnostics/JournalSink.hpp>
#include <Diagnostics/LogConfiguration.hpp>
#include <Diagnostics/LogSinks.hpp>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

LogConfiguration::LogConfiguration(LogLevel defaultLevel, const String& file)
    : levels(defaultLevel)
{
    Xml::XmlConfigDocument("LogConfigurationDocument", *this).Load(file);
}

void LogConfiguration::ReadXml(Xml::XmlReader& reader, Xml::XmlSerializationContext& context)
{
    String name;
    while (reader.ReadStartElement(name))
    {
        if (name == "Levels")
        {
            ReadLevels(reader, context);
        }
        else if (name == "Sinks")
        {
            ReadSinks(reader, context);
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

void LogConfiguration::WriteXml(Xml::XmlWriter&, Xml::XmlSerializationContext&)
{
    throw NotImplementedException("WriteXml");
}

std::shared_ptr<LogManagerData> LogConfiguration::MakeData() const
{
    std::vector<std::unique_ptr<LogSink>> sinks;
    for (const auto& makeSink : sinkMakers)
    {
        sinks.push_back(makeSink());
    }
    if (sinks.empty())
    {
        sinks.push_back(MakeStandardOutputSink(LogLevel::Trace));
    }
    return std::make_shared<LogManagerData>(levels, std::move(sinks));
}

void LogConfiguration::ReadLevels(Xml::XmlReader& reader, const Xml::XmlSerializationContext& context)
{
    String name;
    while (reader.ReadStartElement(name))
    {
        if (name == "Level")
        {
            String category;
            LogLevel level{};
            reader.GetAttributeValue("category", category);
            reader.GetAttributeValue("level", level);
            if (category.empty())
            {
                reader.Raise(FindingCode::InvalidValue, reader.Error("Category of a log level must not be empty."));
            }
            levels.Set(category, level);
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

void LogConfiguration::ReadSinks(Xml::XmlReader& reader, const Xml::XmlSerializationContext& context)
{
    String name;
    while (reader.ReadStartElement(name))
    {
        LogLevel level = LogLevel::Trace;
        reader.TryGetAttributeValue("level", level);
        if (name == "Console")
        {
            sinkMakers.emplace_back([level] { return MakeStandardOutputSink(level); });
        }
        else if (name == "File")
        {
            sinkMakers.push_back(ReadFileSink(reader, context, level));
        }
        else if (name == "Syslog")
        {
            sinkMakers.emplace_back([level] { return std::make_unique<SyslogSink>(level); });
        }
        else
        {
            context.InvalidXmlElementOccurs(reader, name);
        }
        reader.ReadEndElement();
    }
}

LogConfiguration::SinkMaker LogConfiguration::ReadFileSink(Xml::XmlReader& reader,
                                                           const Xml::XmlSerializationContext& context, LogLevel level)
{
    String path;
    String directory;
    const bool hasPath = context.TryGetResolvedPath(reader, "path", path) && !path.empty();
    const bool hasDirectory = context.TryGetResolvedPath(reader, "directory", directory) && !directory.empty();
    if (hasPath == hasDirectory)
    {
        reader.Raise(FindingCode::InvalidValue, reader.Error("A log file needs either a 'path' or a 'directory'."));
    }
    if (hasDirectory)
    {
        path = Io::Path::Combine(directory, GetLogProcessName() + ".log");
    }
    LogRotation rotation;
    reader.TryGetAttributeValue("maxSize", rotation.maximumSize);
    reader.TryGetAttributeValue("maxFiles", rotation.maximumFiles);
    constexpr std::uint32_t mostFiles = 1000;
    if (rotation.maximumSize == 0 || rotation.maximumFiles > mostFiles)
    {
        reader.Raise(FindingCode::InvalidValue,
                     reader.Error("A log file's 'maxSize' must be at least 1, its 'maxFiles' at most {0}.", mostFiles));
    }
    return [=]
    {
        return std::make_unique<FileSink>(level, path, rotation);
    };
}

} // namespace Vela::System::Commons::Diagnostics
