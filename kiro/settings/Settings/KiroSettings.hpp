#pragma once

#include <Settings/EnvironmentVariables.hpp>
#include <Settings/FileTrustSettings.hpp>
#include <Settings/LogSettings.hpp>
#include <Settings/PathSettings.hpp>
#include <Settings/ProcessSettings.hpp>
#include <Settings/ReadOnlyXml.hpp>

namespace Vela::System::Kiro::Internal::Settings
{

/// The settings document of a process: where its log goes, where the other parts of the platform find their files, how
/// processes are started and watched, and which environment variables the platform defines.
class KiroSettings : public ReadOnlyXml
{
public:
    static constexpr const char* documentXmlName = "KiroSettingsDocument";

    /// Reads the root element of one file; called once for each file, so that all files add to the same sections.
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Publishes the environment variables and then resolves the paths, which may name them. May be repeated after the
    /// environment has changed.
    /// @param reset  publish every variable again
    void ResolveAndPublish(bool reset);

    [[nodiscard]] const RscSettings& GetRscSettings() const noexcept;
    [[nodiscard]] const LogSettings& GetLogSettings() const noexcept;
    [[nodiscard]] const ProcessSettings& GetProcessSettings() const noexcept;
    [[nodiscard]] ProcessSettings& GetProcessSettings() noexcept;
    [[nodiscard]] const EnvironmentVariables& GetEnvironmentVariables() const noexcept;
    [[nodiscard]] EnvironmentVariables& GetEnvironmentVariables() noexcept;
    [[nodiscard]] const SecuritySettings& GetSecuritySettings() const noexcept;
    [[nodiscard]] const NmSettings& GetNmSettings() const noexcept;

private:
    RscSettings rsc;
    LogSettings log;
    ProcessSettings process;
    EnvironmentVariables environmentVariables;
    SecuritySettings security;
    NmSettings nm;
    FileTrustSettings fileTrust;
};

} // namespace Vela::System::Kiro::Internal::Settings
