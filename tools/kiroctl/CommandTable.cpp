#include "Command.hpp"

namespace Vela::Kiroctl
{

using Create = std::unique_ptr<Command>();

// Each is defined in Commands/<Name>.cpp.
Create CreateCheck;
Create CreateCrashes;
Create CreateInspect;
Create CreateNew;
Create CreateVersion;

std::span<const CommandEntry> GetCommands()
{
    static constexpr const char* before = "Before a system runs";
    static constexpr const char* after = "When it breaks";
    static constexpr const char* development = "For component authors";
    static constexpr const char* tool = "The tool itself";
    static constexpr CommandEntry commands[] = {
        {"check", before, "Tell what is wrong with documents and libraries", &CreateCheck},
        {"crashes", after, "List what has crashed or failed to start, or show one of the records", &CreateCrashes},
        {"inspect", development, "Show what a component library is made for, needs and contains", &CreateInspect},
        {"new", development, "Write a project for a new component library", &CreateNew},
        {"version", tool, "Show the versions of the tool and of what it works with", &CreateVersion},
    };
    return commands;
}

} // namespace Vela::Kiroctl
