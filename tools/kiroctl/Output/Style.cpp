#include "Style.hpp"

namespace Vela::Kiroctl
{

namespace
{

const char* GetCode(Style style)
{
    switch (style)
    {
    case Style::Heading:
        return "1";
    case Style::Good:
        return "32";
    case Style::Warning:
        return "33";
    case Style::Bad:
        return "31";
    case Style::Faint:
        return "2";
    case Style::Plain:
        break;
    }
    return nullptr;
}

} // namespace

std::string Paint(std::string_view text, Style style)
{
    const char* code = GetCode(style);
    if (code == nullptr || text.empty())
    {
        return std::string(text);
    }
    return std::string("\033[") + code + "m" + std::string(text) + "\033[0m";
}

} // namespace Vela::Kiroctl
