#include "ManualPage.hpp"

#include "ExitCode.hpp"

#include <fmt/format.h>

namespace Vela::Kiroctl
{

namespace
{

/// A text that means to troff what it says.
std::string Escape(const std::string& text)
{
    std::string escaped;
    for (const char character : text)
    {
        switch (character)
        {
        case '\\':
            escaped += "\\e";
            break;
        case '-':
            escaped += "\\-";
            break;
        case '\n':
            escaped += ' ';
            break;
        default:
            escaped += character;
        }
    }
    const bool isRequest = escaped.starts_with('.') || escaped.starts_with('\'');
    return isRequest ? "\\&" + escaped : escaped;
}

std::string WriteOption(const OptionDescription& option)
{
    std::string names;
    for (const std::string& name : option.names)
    {
        names += (names.empty() ? "" : ", ") + fmt::format("\\fB{}\\fR", Escape(name));
    }
    const bool hasValueName = !option.isPositional && !option.valueName.empty();
    std::string text =
        fmt::format(".TP\n{}{}\n{}", names, hasValueName ? fmt::format(" \\fI{}\\fR", Escape(option.valueName)) : "",
                    Escape(option.meaning));
    if (!option.choices.empty())
    {
        text += Escape(fmt::format(": {}", fmt::join(option.choices, ", ")));
    }
    if (!option.defaultValue.empty())
    {
        text += Escape(fmt::format(" (default: {})", option.defaultValue));
    }
    return text + "\n";
}

std::string WriteSynopsis(const CommandDescription& command)
{
    std::string text = fmt::format("\\fB{}\\fR", Escape(command.path));
    bool hasOptions = false;
    std::string arguments;
    for (const OptionDescription& option : command.options)
    {
        hasOptions = hasOptions || !option.isPositional;
        arguments += option.isPositional ? fmt::format(" [\\fI{}\\fR]", Escape(option.names.front())) : "";
    }
    return text + (hasOptions ? " [\\fIOPTIONS\\fR]" : "") + arguments;
}

void AppendCommand(std::string& text, const CommandDescription& command)
{
    text += fmt::format(".SS {}\n{}.\n", Escape(command.path), Escape(command.summary));
    if (command.commands.empty())
    {
        text += ".PP\n" + WriteSynopsis(command) + "\n";
    }
    for (const OptionDescription& option : command.options)
    {
        // Every command has its help.
        text += option.names.back() == "--help" ? "" : WriteOption(option);
    }
    for (const CommandDescription& child : command.commands)
    {
        AppendCommand(text, child);
    }
}

} // namespace

std::string WriteManualPage(const CommandDescription& tool, const std::string& version)
{
    std::string text =
        fmt::format(".TH KIROCTL 1 \"\" \"{}\" \"Vela Kiro\"\n"
                    ".SH NAME\nkiroctl \\- checks, explains and controls a Vela Kiro system\n"
                    ".SH SYNOPSIS\n\\fBkiroctl\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n"
                    ".SH OPTIONS\nEvery command takes \\fB\\-\\-json\\fR, \\fB\\-\\-runtime\\-dir\\fR and "
                    "\\fB\\-\\-help\\fR as well.\n",
                    Escape(version));
    for (const OptionDescription& option : tool.options)
    {
        text += WriteOption(option);
    }
    text += ".SH COMMANDS\n";
    for (const CommandDescription& command : tool.commands)
    {
        AppendCommand(text, command);
    }
    text += ".SH EXIT STATUS\n";
    for (const auto& [code, meaning] : exitCodeMeanings)
    {
        text += fmt::format(".TP\n\\fB{}\\fR\n{}\n", static_cast<int>(code), Escape(std::string(meaning)));
    }
    return text + ".SH ENVIRONMENT\n"
                  ".TP\n\\fBVELA_PATH_RUNTIME_DIR\\fR\nThe runtime directory of the system, unless "
                  "\\fB\\-\\-runtime\\-dir\\fR names one.\n"
                  ".TP\n\\fBNO_COLOR\\fR\nKeeps colours away from a terminal.\n"
                  ".TP\n\\fBCOLUMNS\\fR\nThe width of tables.\n";
}

} // namespace Vela::Kiroctl
