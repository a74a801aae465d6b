#include <Vela/System/Commons/PlainText.hpp>

#include <fmt/format.h>

#include <iterator>

namespace Vela::System::Commons
{

String MakePlainText(std::string_view text, std::size_t maxSize)
{
    String plain;
    plain.reserve(text.size() < maxSize ? text.size() : maxSize);
    for (const char character : text)
    {
        const auto code = static_cast<unsigned char>(character);
        if (plain.size() >= maxSize)
        {
            return plain + "...";
        }
        if ((code < 0x20 && character != '\t') || code == 0x7f)
        {
            fmt::format_to(std::back_inserter(plain), "\\x{:02X}", code);
        }
        else
        {
            plain += character;
        }
    }
    return plain;
}

} // namespace Vela::System::Commons
