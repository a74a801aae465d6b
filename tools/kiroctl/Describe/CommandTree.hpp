#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Vela::Kiroctl
{

struct OptionDescription
{
    /// "--order", "-h": as they are typed; a positional argument has its name alone.
    std::vector<std::string> names;
    bool isPositional = false;
    /// What stands for its value in texts; empty for a flag.
    std::string valueName;
    /// The values that it takes; empty when these are not a short list.
    std::vector<std::string> choices;
    std::string defaultValue;
    std::string meaning;
};

/// The tool, a command or a subcommand as it is declared.
struct CommandDescription
{
    /// All words: "kiroctl new library".
    std::string path;
    std::string name;
    std::string group;
    std::string summary;
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;
};

/// @param app  any part of a command line
CommandDescription DescribeCommand(const CLI::App& app);

/// The same as a flat list, outermost first.
std::vector<const CommandDescription*> ListCommands(const CommandDescription& command);

} // namespace Vela::Kiroctl
