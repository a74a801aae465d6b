#pragma once

#include <Config/ConfigElement.hpp>
#include <Vela/String.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// Names the settings file of a component.
class Settings : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Settings";
    static constexpr const char* pathXmlName = "path";

    Settings() = default;
    explicit Settings(String settingsPath);

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const Settings& other) const;
    [[nodiscard]] const String& GetPath() const noexcept;

    /// Resolved and absolute; empty when the component has none.
    String path;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
