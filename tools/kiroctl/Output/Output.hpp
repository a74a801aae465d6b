#pragma once

#include "Json.hpp"
#include "Style.hpp"
#include "Table.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace Vela::Kiroctl
{

/// Standard output. A command answers either with texts and tables or, when IsJson() says so, with one document.
class Output
{
public:
    explicit Output(bool isJsonWanted);

    [[nodiscard]] bool IsJson() const noexcept
    {
        return isJson;
    }

    /// Writes the answer. Bytes that are no UTF-8 are replaced. Once per run, except by commands that follow events:
    /// they write one document per line with WriteJsonLine.
    void WriteJson(const Json& document);
    void WriteTable(const Table& table);
    /// Writes a text as it is. What comes from elsewhere goes through MakePlainText before.
    void Write(std::string_view text);
    /// The text and a new line.
    void WriteLine(std::string_view text);
    /// One document on one line, and out with it: for answers that go on.
    void WriteJsonLine(const Json& document);
    /// Hands everything to the reader now; for commands that follow events.
    void Flush();
    /// @throws CommandError (Failed) when something could not be written
    void Finish();

    /// The text in a style where styles are shown, otherwise as it is.
    [[nodiscard]] std::string Paint(std::string_view text, Style style) const;
    /// Characters per line; 0 when nobody reads it on a terminal.
    [[nodiscard]] std::size_t GetWidth() const noexcept
    {
        return width;
    }

private:
    bool isJson;
    bool isColoured;
    std::size_t width;
};

} // namespace Vela::Kiroctl
