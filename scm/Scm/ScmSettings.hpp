#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

#include <map>

namespace Vela::System::Scm
{

/// What of the system is switched on: features, components and packages by name.
///
/// @code
/// <ScmSettingsDocument>
///   <Features>
///     <Feature name="Trace" enabled="true"/>
///   </Features>
///   <Components>
///     <Component name="Plant.Alarms" enabled="false"/>
///   </Components>
///   <Packages>
///     <Package name="Plant" enabled="true"/>
///   </Packages>
/// </ScmSettingsDocument>
/// @endcode
/// "enabled" is true when it is absent. A name stands in a list once.
class ScmSettings : public Commons::Xml::IXmlSerializable
{
public:
    static constexpr const char* documentXmlName = "ScmSettingsDocument";

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// @throws NotImplementedException: the document is only read
    void WriteXml(Commons::Xml::XmlWriter& writer, Commons::Xml::XmlSerializationContext& context) override;

    /// The switches as variables: "VELA_FEATURE:Trace" with "true" or "false", and so on.
    [[nodiscard]] const std::map<String, String>& GetVariables() const noexcept
    {
        return variables;
    }

private:
    std::map<String, String> variables;
};

} // namespace Vela::System::Scm
