#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>

#include <string_view>
#include <utility>

namespace Vela::System::Commons::Runtime
{

namespace
{

constexpr std::string_view blanks = " \t\r\n";

/// Takes a quoted part off the text, whose opening quote has been taken already.
String TakeQuoted(std::string_view& rest, char quote, const String& arguments)
{
    String part;
    while (!rest.empty() && rest.front() != quote)
    {
        const bool isEscape = quote == '"' && (rest.starts_with("\\\"") || rest.starts_with("\\\\"));
        rest.remove_prefix(isEscape ? 1 : 0);
        part += rest.front();
        rest.remove_prefix(1);
    }
    if (rest.empty())
    {
        throw ArgumentException::ForParameter("arguments", fmt::format("Unbalanced quote in: {0}", arguments));
    }
    rest.remove_prefix(1);
    return part;
}

String TakeArgument(std::string_view& rest, const String& arguments)
{
    String argument;
    while (!rest.empty() && blanks.find(rest.front()) == std::string_view::npos)
    {
        const char character = rest.front();
        rest.remove_prefix(1);
        if (character == '"' || character == '\'')
        {
            argument += TakeQuoted(rest, character, arguments);
        }
        else if (character == '\\' && !rest.empty())
        {
            argument += rest.front();
            rest.remove_prefix(1);
        }
        else
        {
            argument += character;
        }
    }
    return argument;
}

} // namespace

std::vector<String> SplitArguments(const String& arguments)
{
    std::vector<String> result;
    std::string_view rest = arguments;
    for (;;)
    {
        rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
        if (rest.empty())
        {
            return result;
        }
        result.push_back(TakeArgument(rest, arguments));
    }
}

String QuoteArgument(const String& argument)
{
    if (!argument.empty() && argument.find_first_of(" \t\r\n\"'\\") == String::npos)
    {
        return argument;
    }
    String quoted = "\"";
    for (const char character : argument)
    {
        if (character == '"' || character == '\\')
        {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

} // namespace Vela::System::Commons::Runtime
