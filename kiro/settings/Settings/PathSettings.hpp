#pragma once

#include <Settings/ReadOnlyXml.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlPath.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

/// A section that names one file of another part of the platform.
class PathSettings : public ReadOnlyXml
{
public:
    static constexpr const char* pathXmlName = "path";

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Puts the present values of the environment variables into the path; may be repeated.
    /// @throws XmlException that names file, line, attribute and variable
    void ResolvePaths();

    [[nodiscard]] const String& GetPath() const noexcept;
    [[nodiscard]] bool HasPath() const noexcept;

protected:
    /// What an element without a path does to the path of an earlier one.
    enum class WithoutPath
    {
        KeepsEarlierPath,
        ResetsToDefault,
    };

    PathSettings(const char* defaultFilename, WithoutPath elementWithoutPath);

private:
    const char* defaultPath;
    WithoutPath withoutPath;
    Commons::Xml::XmlPath path;
};

/// The remoting library's settings file.
class RscSettings : public PathSettings
{
public:
    static constexpr const char* elementXmlName = "RscSettings";
    static constexpr const char* defaultRscSettingsFilename = "Rsc.settings";

    RscSettings()
        : PathSettings(defaultRscSettingsFilename, WithoutPath::ResetsToDefault)
    {
    }
};

/// The notification manager's settings file.
class NmSettings : public PathSettings
{
public:
    static constexpr const char* elementXmlName = "NmSettings";
    static constexpr const char* defaultNmSettingsFilename = "";

    NmSettings()
        : PathSettings(defaultNmSettingsFilename, WithoutPath::ResetsToDefault)
    {
    }
};

/// The security settings file.
class SecuritySettings : public PathSettings
{
public:
    static constexpr const char* elementXmlName = "SecuritySettings";
    static constexpr const char* defaultSecuritySettingsFilename = "";

    SecuritySettings()
        : PathSettings(defaultSecuritySettingsFilename, WithoutPath::KeepsEarlierPath)
    {
    }
};

} // namespace Vela::System::Kiro::Internal::Settings
