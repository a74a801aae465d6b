#pragma once

#include "CommandDeclaration.hpp"
#include "CommandError.hpp"
#include "ExitCode.hpp"
#include "Session.hpp"

#include <memory>
#include <span>

namespace Vela::Kiroctl
{

/// One command of the tool. It lives in one file below Commands/ and has one line in the table of CommandTable.cpp;
/// help, shell completion and manual follow from what it declares.
class Command
{
public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /// Adds arguments, options and subcommands, bound to members of the command. The summary is there already, and so
    /// are the options that all commands share.
    virtual void Declare(const CommandDeclaration& command) = 0;
    /// Does what the command line says, which has been read by now. Tells results through the session's output.
    /// @throws CommandError; other exceptions end the command as well, with the code that fits them best
    virtual ExitCode Run(Session& session) = 0;
};

struct CommandEntry
{
    const char* name;
    /// The heading under which the help lists it.
    const char* group;
    /// One line, without a full stop.
    const char* summary;
    std::unique_ptr<Command> (*create)();
};

/// All commands, in the order of the help.
std::span<const CommandEntry> GetCommands();

} // namespace Vela::Kiroctl
