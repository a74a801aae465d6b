#pragma once

#include <Config/Dependency.hpp>
#include <Vela/String.hpp>

#include <set>
#include <vector>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// What a component library needs, in the order of the document; each path stands there once.
class Dependencies : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Dependencies";

    /// @throws XmlException "Dependency '{0}' is already declared!"
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const Dependencies& other) const;

    /// Answers false, changing nothing, when the path is there already.
    bool AddItem(const Dependency& dependency);
    [[nodiscard]] const std::vector<Dependency>& GetItems() const noexcept;
    [[nodiscard]] std::vector<String> GetBinaryPaths() const;

private:
    std::vector<Dependency> items;
    std::set<String> binaryPaths;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
