// Whole systems of real processes, seen from outside: what they write and how they end.

#include "../LogStream.hpp"
#include "SystemModel.hpp"

#include <TestSystem.hpp>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace Vela::Testing
{
namespace
{

const std::set<std::string> speakers{"ComponentsController", "ProcessesController", "SystemManager", "ProcessManager",
                                     "Recorder"};

LifecycleCase Generate(Random& random)
{
    LifecycleCase system =
        GenerateSystem(random, {.maxProcesses = 3, .maxComponents = 6, .external = 10, .hasLostCalls = false});
    // The executable has no static library.
    for (ComponentCase& component : system.components)
    {
        component.library = component.library.empty() ? LifecycleCase::recordingLibrary : component.library;
    }
    return system;
}

/// Processes answer and end when they come to it: what they say of that is sorted.
void SortWhatHasNoOrder(Trace& trace)
{
    const auto isStart = [](const std::string& line)
    {
        return line.ends_with("' started successfully.");
    };
    const auto firstStart = std::find_if(trace.begin(), trace.end(), isStart);
    std::sort(firstStart, std::find_if_not(firstStart, trace.end(), isStart));
    const auto last =
        std::find_if(trace.rbegin(), trace.rend(),
                     [](const std::string& line) { return line.find(" ComponentsController: ") != std::string::npos; });
    std::sort(last.base(), trace.end());
}

Trace Predict(const LifecycleCase& system)
{
    SystemModel model(system, {"Default.kiro.config", TestSystem::GetBuiltFile("lib/libRecording.so"), true});
    const bool isUp = !model.Setup();
    model.Dispose();
    model.lifecycle.EndProcesses();
    Trace trace = model.lifecycle.trace;
    SortWhatHasNoOrder(trace);
    trace.push_back(isUp ? "Up, exit code 0" : "Exit code 1");
    return trace;
}

Trace Observe(const LifecycleCase& system)
{
    TestSystem files;
    files.environment["RECORDING_SCRIPT"] = files.directory.Write("script", system.GetScript());
    files.WriteSettings(fmt::format("<LogSettings logLevel=\"Trace\"/><ProcessSettings singleProcess=\"{}\"/>",
                                    system.isSingleProcess));
    files.directory.Write("Default.kiro.config", system.GetDocument(TestSystem::GetBuiltFile("lib/libRecording.so")));
    StartedProcess main = files.Start();
    bool isUp = true;
    try
    {
        main.AwaitLine("Application 'MainProcess' was setup successfully.");
        main.Signal(SIGTERM);
    }
    catch (const std::runtime_error&)
    {
        isUp = false;
    }
    const int exitCode = main.AwaitEnd();
    Trace trace;
    std::istringstream output(main.GetOutput());
    for (std::string text; std::getline(output, text);)
    {
        const LogLine line = LogLine::Parse(text);
        const std::string said = line.ToString();
        const std::string speaker = line.category.substr(line.category.rfind('.') + 1);
        if (speakers.contains(speaker) && said.find("Vela.System.Scm") == std::string::npos)
        {
            trace.push_back(line.process + " " + said);
        }
    }
    SortWhatHasNoOrder(trace);
    trace.push_back(fmt::format("{}xit code {}", isUp ? "Up, e" : "E", exitCode));
    if (!isUp && !files.TakeCrashRecord().starts_with("reason: failed set-up\n"))
    {
        trace.push_back("A failed set-up without its record");
    }
    const std::string leftovers = files.FindLeftovers();
    if (!leftovers.empty())
    {
        trace.push_back("Left behind: " + leftovers);
    }
    return trace;
}

} // namespace

TEST(LifecycleOracle, HoldsForRealProcesses)
{
    ExpectNoDifference<LifecycleCase>(
        {.generate = Generate,
         .predict = Predict,
         .observe = Observe,
         .simplify = Simplify,
         .missing = {"xception occurs while setting up component", "will be disposed and removed", "Exit code 1"}},
        40);
}

} // namespace Vela::Testing
