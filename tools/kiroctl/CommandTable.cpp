#include "Command.hpp"

namespace Vela::Kiroctl
{

using Create = std::unique_ptr<Command>();

// Each is defined in Commands/<Name>.cpp.
Create CreateCheck;
Create CreateCompletion;
Create CreateCrashes;
Create CreateGraph;
Create CreateInspect;
Create CreateManual;
Create CreateNew;
Create CreatePlan;
Create CreateVersion;

std::span<const CommandEntry> GetCommands()
{
    static constexpr const char* before = "Before a system runs";
    static constexpr const char* after = "When it breaks";
    static constexpr const char* development = "For component authors";
    static constexpr const char* tool = "The tool itself";
    static constexpr CommandEntry commands[] = {
        {"check", before, "Tell what is wrong with documents and libraries", &CreateCheck},
        {"plan", before, "Show what would be started, in which order, and why", &CreatePlan},
        {"graph", before, "Draw processes, components and libraries", &CreateGraph},
        {"crashes", after, "List what has crashed or failed to start, or show one of the records", &CreateCrashes},
        {"inspect", development, "Show what a component library is made for, needs and contains", &CreateInspect},
        {"new", development, "Write a project for a new component library", &CreateNew},
        {"completion", tool, "Write a completion script for a shell", &CreateCompletion},
        {"manual", tool, "Write the manual page", &CreateManual},
        {"version", tool, "Show the versions of the tool and of what it works with", &CreateVersion},
    };
    return commands;
}

} // namespace Vela::Kiroctl
