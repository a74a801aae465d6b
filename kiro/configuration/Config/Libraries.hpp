#pragma once

#include <Config/Library.hpp>
#include <Vela/String.hpp>

#include <map>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// The component libraries by name.
class Libraries : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Libraries";

    /// @throws XmlException "Library '{0}' is already declared!"
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const Libraries& other) const;

    /// Answers false, changing nothing, when there is a library of that name.
    bool AddItem(const Library& library);
    [[nodiscard]] const std::map<String, Library>& GetItems() const noexcept;

private:
    std::map<String, Library> items;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
