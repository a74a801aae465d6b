#include "XmlParser.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>

#include <algorithm>
#include <new>
#include <utility>

namespace Vela::System::Commons::Xml
{

namespace
{

/// Cannot occur in a namespace's address.
constexpr char namespaceSeparator = '|';

bool HasNamespace(std::string_view name)
{
    return name.find(namespaceSeparator) != std::string_view::npos;
}

String GetLocalName(std::string_view name)
{
    return String(name.substr(name.rfind(namespaceSeparator) + 1));
}

bool IsWhiteSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

} // namespace

XmlParser::XmlParser(std::shared_ptr<const XmlSource> documentSource, std::string_view text)
    : source(std::move(documentSource))
    , parser(XML_ParserCreateNS(nullptr, namespaceSeparator), &XML_ParserFree)
    , size(text.size())
{
    if (size > XmlReader::maxSize)
    {
        throw XmlException::At(XmlPosition(source, 1).ToString(),
                               fmt::format("The document is larger than {} bytes.", XmlReader::maxSize));
    }
    // The text goes into the parser's own buffer, where it stays over all stops; there is none of length 0.
    void* buffer = parser == nullptr ? nullptr : XML_GetBuffer(parser.get(), static_cast<int>(size) + 1);
    if (buffer == nullptr)
    {
        throw std::bad_alloc();
    }
    std::copy(text.begin(), text.end(), static_cast<char*>(buffer));
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), &OnStartElement, &OnEndElement);
    XML_SetCharacterDataHandler(parser.get(), &OnText);
    XML_SetStartDoctypeDeclHandler(parser.get(), &OnDoctype);
}

void XmlParser::Next(XmlEvent& event)
{
    if (events.empty())
    {
        Advance();
    }
    event = std::move(events.front());
    events.pop_front();
}

void XmlParser::Advance()
{
    const XML_Status status =
        isStarted ? XML_ResumeParser(parser.get()) : XML_ParseBuffer(parser.get(), static_cast<int>(size), XML_TRUE);
    isStarted = true;
    if (failure != nullptr)
    {
        std::rethrow_exception(failure);
    }
    if (status == XML_STATUS_ERROR)
    {
        ThrowParseError();
    }
    if (status == XML_STATUS_OK)
    {
        events.push_back({XmlEvent::Kind::EndOfDocument, GetPosition().GetLine(), {}, {}});
    }
}

XmlPosition XmlParser::GetPosition() const
{
    return {source, XML_GetCurrentLineNumber(parser.get())};
}

void XmlParser::ThrowParseError() const
{
    throw XmlException::At(GetPosition().ToString(), fmt::format("The document is malformed: {}.",
                                                                 XML_ErrorString(XML_GetErrorCode(parser.get()))));
}

/// Runs the body of a handler: an exception must not pass through the parser, so it waits until the parser returns.
template <typename Function>
void XmlParser::Handle(Function&& function) noexcept
{
    if (failure != nullptr)
    {
        return;
    }
    try
    {
        function();
    }
    catch (...)
    {
        failure = std::current_exception();
        XML_StopParser(parser.get(), XML_FALSE);
    }
}

void XmlParser::Push(XmlEvent event)
{
    event.line = GetPosition().GetLine();
    events.push_back(std::move(event));
    if (events.size() == 1)
    {
        XML_StopParser(parser.get(), XML_TRUE);
    }
}

void XMLCALL XmlParser::OnStartElement(void* self, const XML_Char* name, const XML_Char** attributes)
{
    auto& parser = *static_cast<XmlParser*>(self);
    parser.Handle(
        [&]
        {
            if (++parser.depth > XmlReader::maxDepth)
            {
                throw XmlException::At(parser.GetPosition().ToString(),
                                       fmt::format("Elements are nested deeper than {}.", XmlReader::maxDepth));
            }
            XmlEvent event{XmlEvent::Kind::StartElement, 0, GetLocalName(name), {}};
            event.attributes.reserve(static_cast<std::size_t>(XML_GetSpecifiedAttributeCount(parser.parser.get())) / 2);
            for (; *attributes != nullptr; attributes += 2)
            {
                if (!HasNamespace(attributes[0]))
                {
                    event.attributes.push_back({attributes[0], attributes[1], false});
                }
            }
            parser.isTextSeen = false;
            parser.Push(std::move(event));
        });
}

void XMLCALL XmlParser::OnEndElement(void* self, const XML_Char*)
{
    auto& parser = *static_cast<XmlParser*>(self);
    parser.Handle(
        [&]
        {
            --parser.depth;
            parser.isTextSeen = false;
            parser.Push({XmlEvent::Kind::EndElement, 0, {}, {}});
        });
}

void XMLCALL XmlParser::OnText(void* self, const XML_Char* text, int length)
{
    auto& parser = *static_cast<XmlParser*>(self);
    // One text arrives in several pieces, at least one for each line.
    if (!parser.isTextSeen && !std::all_of(text, text + length, IsWhiteSpace))
    {
        parser.isTextSeen = true;
        parser.Handle([&] { parser.Push({XmlEvent::Kind::Text, 0, {}, {}}); });
    }
}

void XMLCALL XmlParser::OnDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    auto& parser = *static_cast<XmlParser*>(self);
    parser.Handle(
        [&]
        {
            throw XmlException::At(parser.GetPosition().ToString(),
                                   "A document type declaration is not allowed in this document.");
        });
}

} // namespace Vela::System::Commons::Xml
