#include "HelpFormatter.hpp"

#include <sstream>
#include <string_view>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

constexpr std::size_t nameWidth = 26;
constexpr std::size_t lineWidth = 80;

std::string FormatEntry(std::string name, const std::string& meaning)
{
    name.insert(0, "  ");
    std::string text = std::move(name);
    std::size_t column = text.size();
    if (column + 1 > nameWidth)
    {
        text += '\n';
        column = 0;
    }
    std::istringstream words(meaning);
    bool isFirst = true;
    for (std::string word; words >> word; isFirst = false)
    {
        if (!isFirst && column + 1 + word.size() > lineWidth)
        {
            text += '\n';
            column = 0;
        }
        const std::size_t blanks = column < nameWidth ? nameWidth - column : 1;
        text.append(blanks, ' ').append(word);
        column += blanks + word.size();
    }
    return text + '\n';
}

} // namespace

HelpFormatter::HelpFormatter()
{
    column_width(nameWidth);
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const
{
    std::string details = make_option_opts(option);
    // That an argument is a text says nothing beside its name.
    if (constexpr std::string_view text = " TEXT"; isPositional && details.starts_with(text))
    {
        details.erase(0, text.size());
    }
    return FormatEntry(make_option_name(option, isPositional) + details, make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const
{
    return FormatEntry(command->get_name(), command->get_description());
}

} // namespace Vela::Kiroctl
