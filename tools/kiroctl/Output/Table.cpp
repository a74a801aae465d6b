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

/// Breaks behind a blank, slash, comma or the like where there is one, otherwise anywhere.
std::vector<std::string_view> Break(std::string_view text, std::size_t width)
{
    std::vector<std::string_view> lines;
    while (GetWidth(text) > width)
    {
        const std::size_t size = GetSize(text, width);
        std::size_t end = text[size] == ' ' ? size : text.find_last_of(" /,;:@=", size - 1) + 1;
        if (end == 0 || end < size / 3)
        {
            end = size;
        }
        const std::string_view line = text.substr(0, end);
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
        text.remove_prefix(end);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    lines.push_back(text);
    return lines;
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
    std::size_t total = 0;
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
        std::size_t width = GetWidth(columns[i].heading);
        for (const auto& row : rows)
        {
            width = std::max(width, GetWidth(row[i].text));
        }
        widths.push_back(width);
        total += width + (i == 0 ? 0 : gap);
    }
    while (maxWidth > 0 && total > maxWidth)
    {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= minSqueezedWidth)
        {
            break;
        }
        --*widest;
        --total;
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
