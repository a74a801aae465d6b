#include "Output.hpp"

#include "../CommandError.hpp"

#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>

namespace Vela::Kiroctl
{

using System::Commons::Environment;

namespace
{

constexpr std::size_t defaultWidth = 80;

bool IsTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

/// Set and not empty, whatever the value.
bool IsSet(const char* variable)
{
    return !Environment::GetVariableValueOr(variable, "").empty();
}

/// COLUMNS counts without a terminal as well: whoever sets it wants lines of that length.
std::size_t FindWidth()
{
    const String columns = Environment::GetVariableValueOr("COLUMNS", "");
    std::size_t width = 0;
    const auto [end, error] = std::from_chars(columns.data(), columns.data() + columns.size(), width);
    if (error == std::errc() && end == columns.data() + columns.size() && width > 0)
    {
        return width;
    }
    if (!IsTerminal())
    {
        return 0;
    }
    winsize size{};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : defaultWidth;
}

} // namespace

Output::Output(bool isJsonWanted)
    : isJson(isJsonWanted)
    , isColoured(IsTerminal() && !IsSet("NO_COLOR") && Environment::GetVariableValueOr("TERM", "") != "dumb")
    , width(FindWidth())
{
}

void Output::WriteJson(const Json& document)
{
    WriteLine(document.dump(2, ' ', false, Json::error_handler_t::replace));
}

void Output::WriteTable(const Table& table)
{
    Write(table.Format(width, isColoured));
}

void Output::Write(std::string_view text)
{
    // Finish tells what went wrong.
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stdout));
}

void Output::WriteLine(std::string_view text)
{
    Write(text);
    Write("\n");
}

void Output::WriteJsonLine(const Json& document)
{
    WriteLine(document.dump(-1, ' ', false, Json::error_handler_t::replace));
    Flush();
}

void Output::Flush()
{
    if (std::fflush(stdout) != 0)
    {
        Finish();
    }
}

void Output::Finish()
{
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    {
        throw CommandError(ExitCode::Failed, "Cannot write the answer: {}",
                           System::Commons::GetErrorText(errno == 0 ? EIO : errno));
    }
}

std::string Output::Paint(std::string_view text, Style style) const
{
    return isColoured ? Kiroctl::Paint(text, style) : std::string(text);
}

} // namespace Vela::Kiroctl
