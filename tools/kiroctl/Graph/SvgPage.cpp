#include "SvgPage.hpp"

#include "../Output/Json.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace Vela::Kiroctl
{

namespace
{

constexpr double widthOfCharacter = 0.602;

constexpr bool IsFirstByte(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

std::string Escape(std::string_view text)
{
    std::string escaped;
    for (const char character : text)
    {
        switch (character)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            // No document can hold the other control characters.
            escaped += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
        }
    }
    return escaped;
}

/// Two characters of Unicode that are no characters: no document can hold them.
std::string ReplaceNoncharacters(std::string text)
{
    constexpr std::string_view begin = "\xEF\xBF";
    for (auto at = text.find(begin); at != std::string::npos; at = text.find(begin, at + begin.size()))
    {
        char& last = text[at + begin.size()];
        last = last == '\xBE' || last == '\xBF' ? '\xBD' : last;
    }
    return text;
}

std::string FormatKind(const SvgPage::Look& look)
{
    return look.kind.empty() ? std::string() : fmt::format(R"(class="{}" )", look.kind);
}

std::string FormatLook(const SvgPage::Look& look)
{
    return fmt::format(R"(fill="{}" stroke="{}" stroke-width="{}"{}{})", look.fill, look.stroke, look.strokeWidth,
                       look.isDashed ? R"( stroke-dasharray="5 4")" : "",
                       look.opacity < 1 ? fmt::format(R"( opacity="{}")", look.opacity) : "");
}

} // namespace

double SvgPage::GetTextWidth(std::string_view text, double fontSize)
{
    return static_cast<double>(std::count_if(text.begin(), text.end(), IsFirstByte)) * widthOfCharacter * fontSize;
}

std::string SvgPage::Shorten(const std::string& text, double fontSize, double width)
{
    if (GetTextWidth(text, fontSize) <= width)
    {
        return text;
    }
    constexpr std::string_view dots = "...";
    std::string shortened = text;
    do
    {
        while (!shortened.empty() && !IsFirstByte(shortened.back()))
        {
            shortened.pop_back();
        }
        if (!shortened.empty())
        {
            shortened.pop_back();
        }
    } while (!shortened.empty() && GetTextWidth(shortened, fontSize) + GetTextWidth(dots, fontSize) > width);
    return shortened.append(dots);
}

void SvgPage::AddBox(double x, double y, double width, double height, double radius, const Look& look,
                     std::string_view title)
{
    fmt::format_to(std::back_inserter(body),
                   R"(<rect {}x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{:.1f}" rx="{:.1f}" {})", FormatKind(look),
                   x, y, width, height, radius, FormatLook(look));
    body += title.empty() ? "/>\n" : fmt::format("><title>{}</title></rect>\n", Escape(title));
}

void SvgPage::AddText(double x, double y, std::string_view text, double fontSize, std::string_view colour, bool isBold,
                      Anchor anchor)
{
    fmt::format_to(std::back_inserter(body),
                   R"(<text x="{:.1f}" y="{:.1f}" font-size="{}" fill="{}"{}{}>{}</text>)"
                   "\n",
                   x, y, fontSize, colour, isBold ? R"( font-weight="bold")" : "",
                   anchor == Anchor::Start    ? ""
                   : anchor == Anchor::Middle ? R"( text-anchor="middle")"
                                              : R"( text-anchor="end")",
                   Escape(text));
}

void SvgPage::AddCurve(double fromX, double fromY, double toX, double toY, const Look& look)
{
    const double middle = (fromX + toX) / 2;
    fmt::format_to(std::back_inserter(body),
                   R"(<path d="M{:.1f} {:.1f} C{:.1f} {:.1f} {:.1f} {:.1f} {:.1f} {:.1f}" {}/>)"
                   "\n",
                   fromX, fromY, middle, fromY, middle, toY, toX, toY, FormatLook(look));
}

void SvgPage::AddLoop(double fromX, double fromY, double toX, double toY, double reach, const Look& look,
                      std::string_view title)
{
    const double turn = std::max(fromX, toX) + reach;
    fmt::format_to(
        std::back_inserter(body),
        R"(<path {}d="M{:.1f} {:.1f} C{:.1f} {:.1f} {:.1f} {:.1f} {:.1f} {:.1f}" {}><title>{}</title></path>)"
        "\n",
        FormatKind(look), fromX, fromY, turn, fromY, turn, toY, toX, toY, FormatLook(look), Escape(title));
    Look head = look;
    head.isDashed = false;
    AddLine(toX + 6, toY - 4, toX, toY, head);
    AddLine(toX + 6, toY + 4, toX, toY, head);
}

void SvgPage::AddLine(double fromX, double fromY, double toX, double toY, const Look& look)
{
    fmt::format_to(std::back_inserter(body),
                   R"(<path {}d="M{:.1f} {:.1f} L{:.1f} {:.1f}" {}/>)"
                   "\n",
                   FormatKind(look), fromX, fromY, toX, toY, FormatLook(look));
}

std::string SvgPage::Finish(double width, double height, std::string_view title) const
{
    // Names are bytes, which a command line may choose freely; a document must be readable.
    return ReplaceNoncharacters(RepairText(fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="{0:.0f}" height="{1:.0f}" viewBox="0 0 {0:.0f} {1:.0f}" font-family="DejaVu Sans Mono, Liberation Mono, monospace">
<title>{2}</title>
<rect width="{0:.0f}" height="{1:.0f}" fill="#ffffff"/>
{3}</svg>
)",
                                                       width, height, Escape(title), body)));
}

} // namespace Vela::Kiroctl
