#include "CommandTree.hpp"

#include <CLI/CLI.hpp>

#include <sstream>

namespace Vela::Kiroctl
{

namespace
{

/// The library writes the values of a checked option behind its type: "ORDER:{start,stop}".
void SplitTypeName(const std::string& typeName, OptionDescription& description)
{
    const std::size_t brace = typeName.find(":{");
    description.valueName = typeName.substr(0, typeName.find(':'));
    if (brace == std::string::npos)
    {
        return;
    }
    std::istringstream values(typeName.substr(brace + 2, typeName.find('}') - brace - 2));
    for (std::string value; std::getline(values, value, ',');)
    {
        description.choices.push_back(value);
    }
}

OptionDescription DescribeOption(const CLI::Option& option)
{
    OptionDescription description;
    description.isPositional = option.get_positional();
    if (description.isPositional)
    {
        description.names.push_back(option.get_name(true));
    }
    for (const std::string& name : option.get_snames())
    {
        description.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames())
    {
        description.names.push_back("--" + name);
    }
    if (option.get_items_expected_max() > 0)
    {
        SplitTypeName(option.get_type_name(), description);
    }
    description.defaultValue = option.get_default_str();
    description.meaning = option.get_description();
    return description;
}

} // namespace

CommandDescription DescribeCommand(const CLI::App& app)
{
    CommandDescription description;
    for (const CLI::App* part = &app; part != nullptr; part = part->get_parent())
    {
        description.path = part->get_name() + (description.path.empty() ? "" : " ") + description.path;
    }
    description.name = app.get_name();
    description.group = app.get_group();
    description.summary = app.get_description();
    for (const CLI::Option* option : app.get_options())
    {
        description.options.push_back(DescribeOption(*option));
    }
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    {
        description.commands.push_back(DescribeCommand(*command));
    }
    return description;
}

std::vector<const CommandDescription*> ListCommands(const CommandDescription& command)
{
    std::vector<const CommandDescription*> list{&command};
    for (const CommandDescription& child : command.commands)
    {
        const auto below = ListCommands(child);
        list.insert(list.end(), below.begin(), below.end());
    }
    return list;
}

} // namespace Vela::Kiroctl
