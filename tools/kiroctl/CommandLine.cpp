#include "CommandLine.hpp"

#include "Command.hpp"
#include "HelpFormatter.hpp"
#include "Session.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/VelaVersion.hpp>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Vela::Kiroctl
{

namespace
{

ExitCode Report(ExitCode code, std::string_view text)
{
    TellFailure(text);
    return code;
}

std::string MakeFooter()
{
    std::string footer = "Exit codes:\n";
    for (const auto& [code, meaning] : exitCodeMeanings)
    {
        footer += fmt::format("  {}  {}\n", static_cast<int>(code), meaning);
    }
    return footer + "\n'kiroctl COMMAND --help' explains a command.";
}

/// What every command and subcommand has.
void Complete(CLI::App& command)
{
    command.fallthrough();
    const std::string own = command.get_footer();
    command.footer(own + (own.empty() ? "" : "\n") +
                   "Options of every command: --json, --runtime-dir DIR (see 'kiroctl --help').");
    for (CLI::App* subcommand : command.get_subcommands([](CLI::App*) { return true; }))
    {
        subcommand->group("Subcommands");
        Complete(*subcommand);
    }
}

/// The whole command line as it is declared: what is parsed, and what help, completion and manual are made from.
class CommandLine
{
public:
    CommandLine();

    ExitCode Run(int argc, const char* const* argv);

private:
    /// @throws CLI::ParseError when arguments are left over, or no command was named
    void CheckLeftovers() const;
    /// What the user wrote: the tool, the command and its subcommand.
    [[nodiscard]] std::string GetNamedCommand() const;
    ExitCode RunCommand();

    CLI::App app;
    CommonOptions options;
    std::vector<std::unique_ptr<Command>> commands;
};

CommandLine::CommandLine()
    : app("Checks, explains and controls a Vela Kiro system.", "kiroctl")
{
    app.set_version_flag("--version", "kiroctl " + VelaVersion::GetCurrent().ToString(), "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.add_flag("--json", options.isJson, "Answer with one JSON document on standard output");
    app.add_option("--runtime-dir", options.runtimeDirectory,
                   "Runtime directory of the system; default: VELA_PATH_RUNTIME_DIR, then the user's own")
        ->type_name("DIR");
    // What nobody takes is told by this class, in its own words.
    app.require_subcommand(0, 1);
    app.allow_extras();
    app.formatter(std::make_shared<HelpFormatter>());
    for (const CommandEntry& entry : GetCommands())
    {
        CLI::App* commandApp = app.add_subcommand(entry.name, entry.summary);
        commandApp->group(entry.group);
        commands.push_back(entry.create());
        commands.back()->Declare(CommandDeclaration(*commandApp));
        Complete(*commandApp);
    }
    // Not before: commands would begin with a copy of it.
    app.footer(MakeFooter());
}

ExitCode CommandLine::Run(int argc, const char* const* argv)
{
    try
    {
        app.parse(argc, argv);
        CheckLeftovers();
        return RunCommand();
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
        {
            app.exit(error);
            return ExitCode::Success;
        }
        return Report(ExitCode::Usage, fmt::format("{} (see '{} --help')", error.what(), GetNamedCommand()));
    }
    catch (const CommandError& error)
    {
        return Report(error.GetCode(), error.what());
    }
    catch (const Exception& exception)
    {
        return Report(GetExitCode(exception), exception.what());
    }
    catch (const std::exception& exception)
    {
        return Report(ExitCode::Failed, exception.what());
    }
}

void CommandLine::CheckLeftovers() const
{
    const std::vector<std::string> leftovers = app.remaining(true);
    if (!leftovers.empty() && (!app.get_subcommands().empty() || leftovers.front().starts_with('-')))
    {
        throw CLI::ExtrasError(leftovers);
    }
    if (!leftovers.empty())
    {
        throw CLI::ParseError(fmt::format("There is no command '{}'", leftovers.front()), CLI::ExitCodes::ExtrasError);
    }
    if (app.get_subcommands().empty())
    {
        throw CLI::ParseError("A command is required", CLI::ExitCodes::RequiredError);
    }
}

std::string CommandLine::GetNamedCommand() const
{
    std::string name = app.get_name();
    for (auto named = app.get_subcommands(); !named.empty(); named = named.front()->get_subcommands())
    {
        name += " " + named.front()->get_name();
    }
    return name;
}

ExitCode CommandLine::RunCommand()
{
    // The entries were added in their order, and exactly one was named.
    const auto added = app.get_subcommands([](CLI::App*) { return true; });
    const auto named = std::find_if(added.begin(), added.end(), [](CLI::App* command) { return command->parsed(); });
    Session session(options);
    const ExitCode code = commands.at(static_cast<std::size_t>(named - added.begin()))->Run(session);
    session.GetOutput().Finish();
    return code;
}

} // namespace

ExitCode RunCommandLine(int argc, const char* const* argv)
{
    return CommandLine().Run(argc, argv);
}

} // namespace Vela::Kiroctl
