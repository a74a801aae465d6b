#pragma once

#include "Command.hpp"
#include "ExitCode.hpp"
#include "Session.hpp"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Vela::Kiroctl
{

/// The whole command line as it is declared: what is parsed, and what help, completion and manual are made from.
class CommandLine
{
public:
    CommandLine();

    /// Reads the arguments and runs the command; all messages are written by then.
    ExitCode Run(int argc, const char* const* argv);

    [[nodiscard]] const CLI::App& GetApp() const noexcept
    {
        return app;
    }

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

} // namespace Vela::Kiroctl
