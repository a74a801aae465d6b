#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

namespace Vela::System::Commons::Xml
{

namespace
{

constexpr std::size_t indentWidth = 4;

void AppendEscaped(String& target, const String& value)
{
    for (const char character : value)
    {
        switch (character)
        {
        case '&':
            target += "&amp;";
            break;
        case '<':
            target += "&lt;";
            break;
        case '>':
            target += "&gt;";
            break;
        case '"':
            target += "&quot;";
            break;
        case '\t':
            target += "&#9;";
            break;
        case '\n':
            target += "&#10;";
            break;
        case '\r':
            target += "&#13;";
            break;
        default:
            if (static_cast<unsigned char>(character) < 0x20)
            {
                throw ArgumentException::ForParameter(
                    "value", fmt::format("An XML document cannot hold the control character {}.",
                                         static_cast<int>(static_cast<unsigned char>(character))));
            }
            target += character;
        }
    }
}

} // namespace

void XmlWriter::CloseStartTag()
{
    if (isStartTagOpen)
    {
        text += ">\n";
        isStartTagOpen = false;
    }
}

void XmlWriter::WriteStartElement(const String& name)
{
    CloseStartTag();
    text.append(elements.size() * indentWidth, ' ').append("<").append(name);
    elements.push_back(name);
    isStartTagOpen = true;
}

void XmlWriter::WriteAttribute(std::string_view name, const String& value)
{
    if (!isStartTagOpen)
    {
        throw InvalidOperationException("Attribute '{0}' cannot be written here.", name);
    }
    String attribute(" ");
    attribute.append(name).append("=\"");
    AppendEscaped(attribute, value);
    text.append(attribute).append("\"");
}

void XmlWriter::WriteAttribute(std::string_view name, const char* value)
{
    WriteAttribute(name, String(value));
}

void XmlWriter::WriteAttribute(std::string_view name, bool value)
{
    WriteAttribute(name, value ? "true" : "false");
}

void XmlWriter::WriteEndElement()
{
    if (elements.empty())
    {
        throw InvalidOperationException("There is no element to end.");
    }
    const String name = std::move(elements.back());
    elements.pop_back();
    if (isStartTagOpen)
    {
        text += "/>\n";
        isStartTagOpen = false;
    }
    else
    {
        text.append(elements.size() * indentWidth, ' ').append("</").append(name).append(">\n");
    }
}

const String& XmlWriter::GetText() const noexcept
{
    return text;
}

} // namespace Vela::System::Commons::Xml
