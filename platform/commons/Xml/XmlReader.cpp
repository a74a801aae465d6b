#include "XmlParser.hpp"

#include <Vela/System/Commons/Xml/XmlReader.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>
#include <utility>

namespace Vela::System::Commons::Xml
{

using Diagnostics::FindingCode;

struct XmlReader::OpenElement
{
    String name;
    std::vector<XmlAttribute> attributes;
    unsigned long line;
    bool isSkipped = false;
};

XmlReader::XmlReader(std::shared_ptr<const XmlSource> documentSource, std::string_view text)
    : source(std::move(documentSource))
    , parser(std::make_unique<XmlParser>(source, text))
    , event(std::make_unique<XmlEvent>())
{
    parser->Next(*event);
}

XmlReader::~XmlReader() = default;

bool XmlReader::ReadStartElement(String& name)
{
    while (event->kind == XmlEvent::Kind::Text)
    {
        WarnOfText();
        parser->Next(*event);
    }
    if (event->kind != XmlEvent::Kind::StartElement)
    {
        return false;
    }
    name = event->name;
    elements.push_back({std::move(event->name), std::move(event->attributes), event->line});
    parser->Next(*event);
    return true;
}

void XmlReader::ReadEndElement()
{
    String child;
    const bool isSkipped = Current().isSkipped;
    while (ReadStartElement(child))
    {
        if (!isSkipped)
        {
            WarnAt(log, FindingCode::UnknownElement, GetPosition(),
                   "Element '{0}' is not known inside '{1}', it is skipped.", child,
                   elements[elements.size() - 2].name);
        }
        SkipElement();
        ReadEndElement();
    }
    if (!isSkipped)
    {
        WarnOfUnusedAttributes(Current());
    }
    elements.pop_back();
    // Behind the root element this reaches the end of the document, or what is wrong there.
    parser->Next(*event);
}

void XmlReader::SkipElement()
{
    Current().isSkipped = true;
}

const String& XmlReader::GetElementName() const
{
    static const String none;
    return elements.empty() ? none : elements.back().name;
}

XmlPosition XmlReader::GetPosition() const
{
    return {source, elements.empty() ? event->line : elements.back().line};
}

XmlReader::OpenElement& XmlReader::Current()
{
    if (elements.empty())
    {
        throw InvalidOperationException("No element of '{0}' is being read.", source->path);
    }
    return elements.back();
}

void XmlReader::WarnOfUnusedAttributes(const OpenElement& element)
{
    for (const XmlAttribute& attribute : element.attributes)
    {
        if (!attribute.isUsed)
        {
            WarnAt(log, FindingCode::UnknownAttribute, GetPosition(),
                   "Attribute '{0}' of element '{1}' is not known, it is ignored.", attribute.name, element.name);
        }
    }
}

void XmlReader::WarnOfText()
{
    if (!Current().isSkipped)
    {
        WarnAt(log, FindingCode::IgnoredText, XmlPosition(source, event->line), "Text inside element '{0}' is ignored.",
               GetElementName());
    }
}

const String* XmlReader::FindAttribute(std::string_view name)
{
    for (XmlAttribute& attribute : Current().attributes)
    {
        if (attribute.name == name)
        {
            attribute.isUsed = true;
            if (auto* observer = Diagnostics::LoadObserver::TryGet())
            {
                observer->OnAttribute(GetPosition(), GetElementName(), attribute.name, attribute.value);
            }
            return &attribute.value;
        }
    }
    return nullptr;
}

bool XmlReader::HasAttribute(std::string_view name) const
{
    const auto& attributes = elements.back().attributes;
    return std::any_of(attributes.begin(), attributes.end(),
                       [name](const XmlAttribute& attribute) { return attribute.name == name; });
}

bool XmlReader::TryGetAttributeValue(std::string_view name, String& value)
{
    const String* text = FindAttribute(name);
    if (text != nullptr)
    {
        value = *text;
    }
    return text != nullptr;
}

bool XmlReader::TryGetAttributeValue(std::string_view name, bool& value)
{
    const String* text = FindAttribute(name);
    if (text == nullptr)
    {
        return false;
    }
    const bool isTrue = *text == "true" || *text == "1";
    if (!isTrue && *text != "false" && *text != "0")
    {
        Raise(FindingCode::InvalidAttribute,
              Error("Cast of attribute {0} to {1} failed value: {2}", name, "bool", *text));
        return false;
    }
    value = isTrue;
    return true;
}

template <typename Number>
bool XmlReader::TryGetNumber(std::string_view name, const char* typeName, Number& value)
{
    const String* text = FindAttribute(name);
    if (text == nullptr)
    {
        return false;
    }
    std::string_view digits = *text;
    if (digits.size() > 1 && digits.front() == '+' && digits[1] != '-')
    {
        digits.remove_prefix(1);
    }
    Number number{};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    bool isValid = error == std::errc() && end == digits.data() + digits.size();
    if constexpr (std::is_floating_point_v<Number>)
    {
        isValid = isValid && std::isfinite(number);
    }
    if (!isValid)
    {
        Raise(FindingCode::InvalidAttribute,
              Error("Cast of attribute {0} to {1} failed value: {2}", name, typeName, *text));
        return false;
    }
    value = number;
    return true;
}

bool XmlReader::TryGetAttributeValue(std::string_view name, std::int32_t& value)
{
    return TryGetNumber(name, "int32", value);
}

bool XmlReader::TryGetAttributeValue(std::string_view name, std::uint32_t& value)
{
    return TryGetNumber(name, "uint32", value);
}

bool XmlReader::TryGetAttributeValue(std::string_view name, std::uint16_t& value)
{
    return TryGetNumber(name, "uint16", value);
}

bool XmlReader::TryGetAttributeValue(std::string_view name, std::int64_t& value)
{
    return TryGetNumber(name, "int64", value);
}

bool XmlReader::TryGetAttributeValue(std::string_view name, double& value)
{
    return TryGetNumber(name, "double", value);
}

bool XmlReader::TryGetAttributeValue(std::string_view name, Chrono::Duration& value)
{
    const String* text = FindAttribute(name);
    if (text != nullptr && !Chrono::Duration::TryParse(*text, value))
    {
        Raise(FindingCode::InvalidAttribute,
              Error("TryGetAttributeValueDuration failed for attribute '{0}' in element '{1}': invalid duration format "
                    "in value '{2}'",
                    name, GetElementName(), *text));
        return false;
    }
    return text != nullptr;
}

} // namespace Vela::System::Commons::Xml
