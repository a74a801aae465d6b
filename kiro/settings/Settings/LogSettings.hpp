#pragma once

#include <Settings/ReadOnlyXml.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>
#include <Vela/System/Commons/Xml/XmlPath.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

/// Where the log goes and how much it says.
class LogSettings : public ReadOnlyXml
{
public:
    static constexpr const char* elementXmlName = "LogSettings";
    static constexpr const char* logLevelXmlName = "logLevel";
    static constexpr const char* logDirXmlName = "logDir";
    static constexpr const char* configFileXmlName = "configFile";

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Puts the present values of the environment variables into the paths; may be repeated.
    /// @throws XmlException that names file, line, attribute and variable
    void ResolvePaths();

    /// None when the document does not say.
    [[nodiscard]] Commons::Diagnostics::LogLevel GetLogLevel() const noexcept;
    /// Directory for log files.
    [[nodiscard]] const String& GetLogDir() const noexcept;
    [[nodiscard]] bool HasLogDir() const noexcept;
    /// Log configuration file; empty when there is none.
    [[nodiscard]] const String& GetConfigFile() const noexcept;

private:
    Commons::Diagnostics::LogLevel logLevel = Commons::Diagnostics::LogLevel::None;
    Commons::Xml::XmlPath logDir;
    Commons::Xml::XmlPath configFile;
    bool hasLogDir = false;
};

} // namespace Vela::System::Kiro::Internal::Settings
