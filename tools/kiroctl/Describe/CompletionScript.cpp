#include "CompletionScript.hpp"

#include <fmt/format.h>

namespace Vela::Kiroctl
{

namespace
{

/// In single quotes.
std::string Quote(const std::string& text)
{
    std::string quoted = "'";
    for (const char character : text)
    {
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return quoted + "'";
}

/// A shell pattern list of the ways to every command, as the walk over the words sees them.
std::string ListPaths(const CommandDescription& tool)
{
    std::string patterns;
    for (const CommandDescription* command : ListCommands(tool))
    {
        if (command != &tool)
        {
            patterns += (patterns.empty() ? "" : " | ") + Quote(command->path);
        }
    }
    return patterns;
}

std::string JoinNames(const OptionDescription& option)
{
    return fmt::format("{}", fmt::join(option.names, " | "));
}

/// What comes behind an option with a value: its choices, or a file name.
std::string WriteValues(const CommandDescription& command, const CommandDescription& tool, const char* complete)
{
    std::string cases;
    for (const CommandDescription* owner : {&command, &tool})
    {
        for (const OptionDescription& option : owner->options)
        {
            if (!option.isPositional && !option.valueName.empty())
            {
                cases += fmt::format("        {}) {} ;;\n", JoinNames(option),
                                     option.choices.empty()
                                         ? "return 1"
                                         : fmt::format(fmt::runtime(complete), fmt::join(option.choices, " ")));
            }
        }
        if (&command == &tool)
        {
            break;
        }
    }
    return cases.empty() ? "" : "      case $before in\n" + cases + "      esac\n";
}

/// The walk that finds out which command the words before the cursor name.
std::string WriteWalk(const CommandDescription& tool, const char* words)
{
    return fmt::format("  local place={} word\n"
                       "  for word in {}; do\n"
                       "    case \"$place $word\" in\n"
                       "      {}) place=\"$place $word\" ;;\n"
                       "    esac\n"
                       "  done\n",
                       Quote(tool.name), words, ListPaths(tool));
}

std::string ListWords(const CommandDescription& command, const CommandDescription& tool)
{
    std::vector<std::string> words;
    for (const CommandDescription& child : command.commands)
    {
        words.push_back(child.name);
    }
    for (const CommandDescription* owner : {&command, &tool})
    {
        for (const OptionDescription& option : owner->options)
        {
            const bool isCommon = &command == &tool || owner != &tool || option.names.back() == "--json" ||
                                  option.names.back() == "--runtime-dir";
            if (!option.isPositional && isCommon)
            {
                words.push_back(option.names.back());
            }
        }
        if (&command == &tool)
        {
            break;
        }
    }
    for (const OptionDescription& option : command.options)
    {
        if (option.isPositional)
        {
            words.insert(words.end(), option.choices.begin(), option.choices.end());
        }
    }
    return fmt::format("{}", fmt::join(words, " "));
}

} // namespace

std::string WriteBashCompletion(const CommandDescription& tool)
{
    std::string text = "# Completion for bash, made from the tool's own command line.\n_kiroctl() {\n";
    text += "  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n";
    text += WriteWalk(tool, "\"${COMP_WORDS[@]:1:COMP_CWORD-1}\"");
    text += "  COMPREPLY=()\n  case $place in\n";
    for (const CommandDescription* command : ListCommands(tool))
    {
        text += fmt::format("    {})\n{}", Quote(command->path),
                            WriteValues(*command, tool, "COMPREPLY=($(compgen -W '{}' -- \"$current\")); return"));
        text += fmt::format("      COMPREPLY=($(compgen -W {} -- \"$current\"))\n      ;;\n",
                            Quote(ListWords(*command, tool)));
    }
    return text + "  esac\n}\ncomplete -o default -F _kiroctl kiroctl\n";
}

std::string WriteZshCompletion(const CommandDescription& tool)
{
    std::string text = "#compdef kiroctl\n# Completion for zsh, made from the tool's own command line.\n_kiroctl() {\n";
    text += "  local before=${words[CURRENT-1]}\n";
    text += WriteWalk(tool, "\"${(@)words[2,CURRENT-1]}\"");
    text += "  case $place in\n";
    for (const CommandDescription* command : ListCommands(tool))
    {
        text += fmt::format("    {})\n", Quote(command->path));
        std::string values = WriteValues(*command, tool, "compadd -- {}; return");
        for (std::size_t at = values.find("return 1"); at != std::string::npos; at = values.find("return 1", at))
        {
            values.replace(at, 8, "_files; return");
        }
        text += values;
        if (!command->commands.empty())
        {
            std::string entries;
            for (const CommandDescription& child : command->commands)
            {
                entries += " " + Quote(child.name + ":" + child.summary);
            }
            text += fmt::format("      local -a commands=({} )\n      _describe command commands\n", entries);
        }
        text += fmt::format("      if [[ $PREFIX == -* ]]; then compadd -- {}; else _files; fi\n      ;;\n",
                            ListWords(*command, tool));
    }
    return text + "  esac\n}\ncompdef _kiroctl kiroctl\n";
}

} // namespace Vela::Kiroctl
