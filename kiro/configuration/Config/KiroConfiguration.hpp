#pragma once

#include <Config/Components.hpp>
#include <Config/Libraries.hpp>
#include <Config/Processes.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// The system as it is configured: its processes, the libraries that can be loaded, and the components.
class KiroConfiguration : public ConfigElement
{
public:
    /// Name of the document's root element.
    static constexpr const char* documentPathXmlName = "KiroConfigurationDocument";

    /// Reads the root element of one file; called once for each file, so that all files add to the same tables.
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const KiroConfiguration& other) const;

    /// Drops the processes without components, then copies the generic components into those that are left.
    void ResolveMultiProcessItems(bool singleProcess);

    Processes processes;
    Libraries libraries;
    Components components;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
