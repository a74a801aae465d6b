#pragma once

#include "Style.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace Vela::Kiroctl
{

/// Rows under headings, as wide as their contents. What is too wide for the terminal is broken into lines inside its
/// column, so that nothing is cut off.
class Table
{
public:
    enum class Align
    {
        Left,
        Right,
    };

    struct Column
    {
        std::string heading;
        Align align = Align::Left;
    };

    struct Cell
    {
        // Most cells are plain texts.
        Cell(std::string cellText, Style cellStyle = Style::Plain)
            : text(std::move(cellText))
            , style(cellStyle)
        {
        }
        Cell(const char* cellText, Style cellStyle = Style::Plain)
            : Cell(std::string(cellText), cellStyle)
        {
        }

        std::string text;
        Style style;
    };

    explicit Table(std::vector<Column> tableColumns);

    /// @param cells  one for each column, at most; control characters are made visible
    void AddRow(std::vector<Cell> cells);
    [[nodiscard]] bool IsEmpty() const noexcept;
    /// @param maxWidth  characters per line; 0: no limit, one line per row
    [[nodiscard]] std::string Format(std::size_t maxWidth, bool isColoured) const;

private:
    [[nodiscard]] std::vector<std::size_t> ChooseWidths(std::size_t maxWidth) const;
    void AppendRow(std::string& text, const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                   bool isColoured) const;

    std::vector<Column> columns;
    std::vector<std::vector<Cell>> rows;
};

} // namespace Vela::Kiroctl
