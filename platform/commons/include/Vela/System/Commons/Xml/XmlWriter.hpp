#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <string_view>
#include <vector>

namespace Vela::System::Commons::Xml
{

/// Writes a document as text, indented, one element per line.
class VELA_COMMONS_API XmlWriter
{
public:
    /// Begins an element inside the current one.
    void WriteStartElement(const String& name);
    /// Adds an attribute to the element just begun.
    /// @throws InvalidOperationException when it has children already, or when there is no element
    /// @throws ArgumentException when the value holds a character that no XML document can hold
    void WriteAttribute(std::string_view name, const String& value);
    /// The same for a C string, which would otherwise be taken for a boolean.
    void WriteAttribute(std::string_view name, const char* value);
    /// "true" or "false".
    void WriteAttribute(std::string_view name, bool value);
    /// Ends the current element.
    /// @throws InvalidOperationException when there is none
    void WriteEndElement();

    /// What has been written so far.
    [[nodiscard]] const String& GetText() const noexcept;

private:
    void CloseStartTag();

    String text;
    std::vector<String> elements;
    bool isStartTagOpen = false;
};

} // namespace Vela::System::Commons::Xml
