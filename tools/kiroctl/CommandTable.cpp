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
Create CreateComponents;
Create CreateEnv;
Create CreateExplain;
Create CreateLog;
Create CreateLogLevel;
Create CreatePowerDown;
Create CreateProcesses;
Create CreateResolve;
Create CreateServices;
Create CreateRestart;
Create CreateShutdown;
Create CreateStatus;
Create CreateTimeline;
Create CreateWatch;
Create CreateVersion;

std::span<const CommandEntry> GetCommands()
{
    static constexpr const char* before = "Before a system runs";
    static constexpr const char* running = "Running systems";
    static constexpr const char* timing = "Where the time goes";
    static constexpr const char* after = "When it breaks";
    static constexpr const char* development = "For component authors";
    static constexpr const char* tool = "The tool itself";
    static constexpr CommandEntry commands[] = {
        {"check", before, "Tell what is wrong with documents and libraries", &CreateCheck},
        {"plan", before, "Show what would be started, in which order, and why", &CreatePlan},
        {"graph", before, "Draw processes, components, libraries and services", &CreateGraph},
        {"status", running, "Show how the system does", &CreateStatus},
        {"processes", running, "List the processes and what they take", &CreateProcesses},
        {"components", running, "List the components and how far they are", &CreateComponents},
        {"services", running, "List the services and who uses them", &CreateServices},
        {"explain", running, "Tell where a component stands, and why", &CreateExplain},
        {"log", running, "Show what was logged lately, and follow it", &CreateLog},
        {"loglevel", running, "Show or set log levels", &CreateLogLevel},
        {"watch", running, "Show notifications as they come", &CreateWatch},
        {"env", running, "Show or set environment variables", &CreateEnv},
        {"resolve", running, "Show the current name of a renamed environment variable", &CreateResolve},
        {"shutdown", running, "End the system in order", &CreateShutdown},
        {"restart", running, "End the system in order and start it again", &CreateRestart},
        {"power-down", running, "Tell all components that power is about to fail", &CreatePowerDown},
        {"timeline", timing, "Show where the time of a start went", &CreateTimeline},
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
