#include "Table.hpp"

#include <Vela/System/Commons/PlainText.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

constexpr std::size_t gap = 2;
/// A column is not squeezed further than this.
constexpr std::size_t minSqueezedWidth = 8;

bool IsContinuation(char character)
{
    return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

/// Characters, not bytes.
std::size_t GetWidth(std::string_view text)
{
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), &IsContinuation));
}

/// Bytes of the first `width` characters.
std::size_t GetSize(std::string_view text, std::size_t width)
{
    std::size_t size = 0;
    while (size < text.size() && (width > 0 || IsContinuation(text[size])))
    {
        width -= IsContinuation(text[size]) ? 0U : 1U;
        ++size;
    }
    return size;
}

/// A text may be broken behind each of them.
constexpr std::string_view separators = " /,;:@=";

/// The longest part without a separator inside.
std::size_t GetLongestPart(std::string_view text)
{
    std::size_t longest = 0;
    while (!text.empty())
    {
        const std::size_t separator = std::min(text.find_first_of(separators), text.size() - 1);
        const std::string_view part = text.substr(0, text[separator] == ' ' ? separator : separator + 1);
        longest = std::max(longest, GetWidth(part));
        text.remove_prefix(separator + 1);
    }
    return longest;
}

/// The end of the last part in front of `size` at which a capital follows a small letter; 0 without one.
std::size_t FindCapital(std::string_view text, std::size_t size)
{
    const auto isIn = [](char character, char first, char last)
    {
        return character >= first && character <= last;
    };
    while (size > 0 && !(isIn(text[size], 'A', 'Z') && isIn(text[size - 1], 'a', 'z')))
    {
        --size;
    }
    return size;
}

/// Breaks behind a separator where there is one, otherwise in front of a capital, otherwise anywhere.
std::vector<std::string_view> Break(std::string_view text, std::size_t width)
{
    std::vector<std::string_view> lines;
    while (GetWidth(text) > width)
    {
        const std::size_t size = GetSize(text, width);
        std::size_t end = text[size] == ' ' ? size : text.find_last_of(separators, size - 1) + 1;
        if (end < size / 3 + 1)
        {
            const std::size_t capital = FindCapital(text, size);
            end = capital > size / 3 ? capital : size;
        }
        const std::string_view line = text.substr(0, end);
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
        text.remove_prefix(end);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    lines.push_back(text);
    return lines;
}

/// Takes from the widest columns, as long as one is wider than it must be and all together are too wide.
void Squeeze(std::vector<std::size_t>& widths, std::size_t& total, std::size_t maxTotal,
             const std::vector<std::size_t>& smallest)
{
    while (total > maxTotal)
    {
        std::size_t* widest = nullptr;
        for (std::size_t i = 0; i < widths.size(); ++i)
        {
            if (widths[i] > smallest[i] && (widest == nullptr || widths[i] > *widest))
            {
                widest = &widths[i];
            }
        }
        if (widest == nullptr)
        {
            return;
        }
        --*widest;
        --total;
    }
}

} // namespace

Table::Table(std::vector<Column> tableColumns)
    : columns(std::move(tableColumns))
{
}

void Table::AddRow(std::vector<Cell> cells)
{
    for (Cell& cell : cells)
    {
        cell.text = System::Commons::MakePlainText(cell.text);
    }
    cells.resize(columns.size(), Cell(""));
    rows.push_back(std::move(cells));
}

bool Table::IsEmpty() const noexcept
{
    return rows.empty();
}

std::vector<std::size_t> Table::ChooseWidths(std::size_t maxWidth) const
{
    std::vector<std::size_t> widths;
    std::vector<std::size_t> longestParts;
    std::size_t total = 0;
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
        std::size_t width = GetWidth(columns[i].heading);
        std::size_t part = GetLongestPart(columns[i].heading);
        for (const auto& row : rows)
        {
            width = std::max(width, GetWidth(row[i].text));
            part = std::max(part, GetLongestPart(row[i].text));
        }
        widths.push_back(width);
        longestParts.push_back(part);
        total += width + (i == 0 ? 0 : gap);
    }
    if (maxWidth > 0)
    {
        // Words are broken only where nothing else helps.
        Squeeze(widths, total, maxWidth, longestParts);
        Squeeze(widths, total, maxWidth, std::vector<std::size_t>(widths.size(), minSqueezedWidth));
    }
    return widths;
}

void Table::AppendRow(std::string& text, const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                      bool isColoured) const
{
    std::vector<std::vector<std::string_view>> lines;
    std::size_t height = 0;
    for (std::size_t i = 0; i < cells.size(); ++i)
    {
        lines.push_back(Break(cells[i].text, widths[i]));
        height = std::max(height, lines.back().size());
    }
    for (std::size_t line = 0; line < height; ++line)
    {
        std::size_t pending = 0;
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            const std::string_view part = line < lines[i].size() ? lines[i][line] : std::string_view();
            const std::size_t fill = widths[i] - std::min(widths[i], GetWidth(part));
            pending += columns[i].align == Align::Right ? fill : 0;
            if (!part.empty())
            {
                // Blanks are written in front of something only: no line ends in them.
                text.append(pending, ' ');
                pending = 0;
                text += isColoured ? Paint(part, cells[i].style) : std::string(part);
            }
            pending += columns[i].align == Align::Right ? 0 : fill;
            pending += gap;
        }
        text += '\n';
    }
}

std::string Table::Format(std::size_t maxWidth, bool isColoured) const
{
    const auto widths = ChooseWidths(maxWidth);
    std::vector<Cell> headings;
    for (const Column& column : columns)
    {
        headings.emplace_back(column.heading, Style::Heading);
    }
    std::string text;
    AppendRow(text, headings, widths, isColoured);
    for (const auto& row : rows)
    {
        AppendRow(text, row, widths, isColoured);
    }
    return text;
}

} // namespace Vela::Kiroctl
