#include "CommandDeclaration.hpp"

#include <CLI/CLI.hpp>

namespace Vela::Kiroctl
{

namespace
{

void Apply(CLI::Option& option, const ValueRules& rules, bool hasDefault)
{
    option.required(rules.isRequired);
    if (rules.name != nullptr)
    {
        option.type_name(rules.name);
    }
    if (hasDefault)
    {
        option.capture_default_str();
    }
    if (!rules.choices.empty())
    {
        option.check(CLI::IsMember(rules.choices));
    }
}

} // namespace

void CommandDeclaration::AddText(const char* names, std::string& target, const char* meaning,
                                 const ValueRules& rules) const
{
    Apply(*app->add_option(names, target, meaning), rules, !target.empty());
}

void CommandDeclaration::AddNumber(const char* names, int& target, NumberRange range, const char* meaning,
                                   const ValueRules& rules) const
{
    // What a number may be is told when it is not that.
    CLI::Option& option = *app->add_option(names, target, meaning)
                               ->type_name("COUNT")
                               ->check(CLI::Range(range.lowest, range.highest).description(""));
    Apply(option, rules, target >= range.lowest && target <= range.highest);
}

void CommandDeclaration::AddFlag(const char* names, bool& target, const char* meaning) const
{
    app->add_flag(names, target, meaning);
}

CommandDeclaration CommandDeclaration::AddSubcommand(const char* name, const char* summary) const
{
    app->require_subcommand(app->get_require_subcommand_min(), 1);
    return CommandDeclaration(*app->add_subcommand(name, summary));
}

void CommandDeclaration::RequireSubcommand() const
{
    app->require_subcommand(1);
}

void CommandDeclaration::SetFooter(const char* text) const
{
    app->footer(text);
}

bool CommandDeclaration::IsNamed() const
{
    return app->parsed();
}

CommandDescription CommandDeclaration::DescribeTool() const
{
    const CLI::App* tool = app;
    while (tool->get_parent() != nullptr)
    {
        tool = tool->get_parent();
    }
    return DescribeCommand(*tool);
}

} // namespace Vela::Kiroctl
