#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <expat.h>

#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <string_view>
#include <vector>

namespace Vela::System::Commons::Xml
{

struct XmlAttribute
{
    String name;
    String value;
    bool isUsed = false;
};

struct XmlEvent
{
    enum class Kind
    {
        StartElement,
        EndElement,
        /// Text other than white space.
        Text,
        EndOfDocument,
    };

    Kind kind = Kind::EndOfDocument;
    unsigned long line = 0;
    /// Of a StartElement: name without its namespace.
    String name;
    std::vector<XmlAttribute> attributes;
};

/// Expat, turned around: instead of being called by the parser, the caller takes one event after the other. The parser
/// is stopped at each tag and resumed for the next event, so that a document is never held as a tree.
class XmlParser
{
public:
    XmlParser(std::shared_ptr<const XmlSource> documentSource, std::string_view text);
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;

    /// Moves the next event into `event`.
    /// @throws XmlException when the document is malformed or exceeds a bound
    void Next(XmlEvent& event);

private:
    template <typename Function>
    void Handle(Function&& function) noexcept;
    void Push(XmlEvent event);
    void Advance();
    [[nodiscard]] XmlPosition GetPosition() const;
    [[noreturn]] void ThrowParseError() const;

    static void XMLCALL OnStartElement(void* self, const XML_Char* name, const XML_Char** attributes);
    static void XMLCALL OnEndElement(void* self, const XML_Char* name);
    static void XMLCALL OnText(void* self, const XML_Char* text, int length);
    static void XMLCALL OnDoctype(void* self, const XML_Char* name, const XML_Char* systemId, const XML_Char* publicId,
                                  int hasInternalSubset);

    const std::shared_ptr<const XmlSource> source;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser;
    /// Usually one; two at an empty element, whose end follows its beginning before the parser stops.
    std::deque<XmlEvent> events;
    std::exception_ptr failure;
    std::size_t size;
    std::size_t depth = 0;
    bool isStarted = false;
    bool isTextSeen = false;
};

} // namespace Vela::System::Commons::Xml
