#pragma once

#include <Config/ConfigElement.hpp>
#include <Vela/String.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// A shared object that a component library needs.
class Dependency : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Dependency";
    static constexpr const char* binaryPathXmlName = "binaryPath";

    /// @throws XmlException "Dependency's binaryPath must not be empty."
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const Dependency& other) const;

    [[nodiscard]] const String& GetBinaryPath() const noexcept;
    void SetBinaryPath(const String& path);

private:
    String binaryPath;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
