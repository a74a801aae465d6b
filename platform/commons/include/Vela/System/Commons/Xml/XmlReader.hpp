#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Chrono/Duration.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>
#include <Vela/TypeName.hpp>

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace Vela::System::Commons::Xml
{

class XmlParser;
struct XmlEvent;

/// Reads a document from front to back, element by element.
///
/// @code
/// String name;
/// while (reader.ReadStartElement(name))
/// {
///     if (name == "Pump")
///     {
///         reader.GetAttributeValue("name", pump.name);           // mandatory
///         reader.TryGetAttributeValue("enabled", pump.isEnabled); // optional
///     }
///     else
///     {
///         context.InvalidXmlElementOccurs(reader, name);
///     }
///     reader.ReadEndElement();
/// }
/// @endcode
///
/// Nothing is ignored in silence: attributes that nobody asked for, children that nobody entered and text between the
/// elements are warnings with file and line, written when the element is left. Attributes of a foreign namespace are
/// meant for other programs and are passed over. A document type declaration is refused, so there are no entities to
/// expand; depth and size are bounded.
///
/// One thread at a time. After an exception the reader must not be used further.
class VELA_COMMONS_API XmlReader : private Diagnostics::Loggable<XmlReader>
{
public:
    /// Documents beyond this size are refused, in bytes.
    static constexpr std::size_t maxSize = std::size_t{16} * 1024 * 1024;
    /// Elements nested deeper are refused.
    static constexpr std::size_t maxDepth = 64;

    /// Reads a text, which is copied. The source names it in messages.
    /// @throws XmlException when the text is too large
    XmlReader(std::shared_ptr<const XmlSource> documentSource, std::string_view text);
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;
    ~XmlReader();

    /// Enters the next child of the current element (at first: the root element) and tells its name, without its
    /// namespace. Answers false, and stays, when there is no further child.
    /// @throws XmlException when the document is malformed
    bool ReadStartElement(String& name);
    /// Leaves the current element. Children not entered are skipped, each with a warning. Leaving the root element
    /// reads to the end of the document.
    /// @throws XmlException when the document is malformed
    /// @throws InvalidOperationException when no element is entered
    void ReadEndElement();
    /// Turns off the warnings for the current element, attributes and children alike.
    void SkipElement();

    /// Name of the current element, without its namespace.
    [[nodiscard]] const String& GetElementName() const;
    /// Where the current element begins.
    [[nodiscard]] XmlPosition GetPosition() const;

    /// Read an optional attribute of the current element: answer false and leave `value` alone when it is missing.
    /// @throws XmlException when its text does not fit the type:
    ///         "Cast of attribute {0} to {1} failed value: {2}" for numbers and booleans,
    ///         "TryGetAttributeValueDuration failed for attribute ..." for durations,
    ///         "Invalid string for Enum '{0}' occurs: {1}" for enumerations
    bool TryGetAttributeValue(std::string_view name, String& value);
    /// true, false, 1 or 0.
    bool TryGetAttributeValue(std::string_view name, bool& value);
    /// Numbers are decimal, with an optional sign; the whole text must be one number in the range of the type.
    bool TryGetAttributeValue(std::string_view name, std::int32_t& value);
    bool TryGetAttributeValue(std::string_view name, std::uint32_t& value);
    bool TryGetAttributeValue(std::string_view name, std::uint16_t& value);
    bool TryGetAttributeValue(std::string_view name, std::int64_t& value);
    bool TryGetAttributeValue(std::string_view name, double& value);
    /// As Chrono::Duration::TryParse reads it.
    bool TryGetAttributeValue(std::string_view name, Chrono::Duration& value);
    /// A name of the enumeration's dictionary.
    template <EnumWithDictionary E>
    bool TryGetAttributeValue(std::string_view name, E& value)
    {
        String text;
        if (!TryGetAttributeValue(name, text))
        {
            return false;
        }
        if (!TryGetEnumValue(text.c_str(), value))
        {
            Raise(Diagnostics::FindingCode::InvalidAttribute,
                  Error("Invalid string for Enum '{0}' occurs: {1}", GetTypeName<E>(), text));
            return false;
        }
        return true;
    }

    /// Reads a mandatory attribute of the current element, of any type above.
    /// @throws XmlException "GetAttributeValue failed for mandatory attribute: {0} elementName: {1}"
    template <typename T>
    void GetAttributeValue(std::string_view name, T& value)
    {
        if (!TryGetAttributeValue(name, value) && !HasAttribute(name))
        {
            Raise(Diagnostics::FindingCode::MissingAttribute,
                  Error("GetAttributeValue failed for mandatory attribute: {0} elementName: {1}", name,
                        GetElementName()));
        }
    }

    /// Throws an exception about the current element, unless there is an observer to tell.
    void Raise(Diagnostics::FindingCode code, const XmlException& exception) const
    {
        Diagnostics::Raise(code, GetPosition(), exception);
    }

    /// An exception that says where the current element is, for the caller to throw.
    template <typename... Args>
    [[nodiscard]] XmlException Error(fmt::format_string<const Args&...> format, const Args&... args) const
    {
        return XmlException::At(GetPosition().ToString(), fmt::format(format, args...));
    }

private:
    struct OpenElement;

    const String* FindAttribute(std::string_view name);
    [[nodiscard]] bool HasAttribute(std::string_view name) const;
    template <typename Number>
    bool TryGetNumber(std::string_view name, const char* typeName, Number& value);
    [[nodiscard]] OpenElement& Current();
    void FetchEvent();
    void SkipChild();
    void WarnOfUnusedAttributes(const OpenElement& element);
    void WarnOfText();

    const std::shared_ptr<const XmlSource> source;
    const std::unique_ptr<XmlParser> parser;
    const std::unique_ptr<XmlEvent> event;
    std::vector<OpenElement> elements;
};

} // namespace Vela::System::Commons::Xml
