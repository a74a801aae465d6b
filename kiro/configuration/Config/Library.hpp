#pragma once

#include <Config/Dependencies.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// A component library.
class Library : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Library";
    static constexpr const char* nameXmlName = "name";
    static constexpr const char* binaryPathXmlName = "binaryPath";

    Library() = default;
    Library(String libraryName, String libraryBinaryPath);

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Compares all that is configured, not where it was written.
    [[nodiscard]] bool Equals(const Library& other) const;
    [[nodiscard]] const Dependencies& GetDependencies() const noexcept;

    String name;
    /// Resolved and absolute.
    String binaryPath;
    Dependencies dependencies;
    /// Where it was written.
    Commons::Xml::XmlPosition position;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
