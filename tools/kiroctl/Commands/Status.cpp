#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <Vela/System/Commons/PlainText.hpp>

#include <algorithm>
#include <map>

namespace Vela::Kiroctl
{

namespace
{

class Status final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.SetFooter("Exit code 1: the system runs with errors, its start failed, or a process has\nended.");
    }

    ExitCode Run(Session& session) override
    {
        const RunningSystem system(session);
        const auto diagnostics = system.GetDiagnostics();
        const auto status = diagnostics->GetStatus();
        const auto processes = diagnostics->GetProcesses();
        std::map<std::string, int> components;
        for (const auto& component : diagnostics->GetComponents())
        {
            ++components[component.state];
        }
        Output& output = session.GetOutput();
        if (output.IsJson())
        {
            WriteJson(output, status, processes, components);
        }
        else
        {
            WriteText(output, status, processes, components);
        }
        const bool hasEnded =
            status.state == "running" && std::any_of(processes.begin(), processes.end(),
                                                     [](const auto& process) { return process.state == "ended"; });
        return status.hasError || hasEnded ? ExitCode::Negative : ExitCode::Success;
    }

private:
    static void WriteJson(Output& output, const Services::SystemStatus& status,
                          const std::vector<Services::ProcessStatus>& processes,
                          const std::map<std::string, int>& components)
    {
        Json json{{"name", status.name},
                  {"state", status.state},
                  {"since", FormatTime(status.since)},
                  {"startTime", FormatTime(status.startTime)},
                  {"hasError", status.hasError},
                  {"failure", ToJson(status.failure)},
                  {"phase", status.phase},
                  {"configuration", status.configuration},
                  {"running", Json::array()},
                  {"processes", Json::array()},
                  {"components", components}};
        for (const auto& step : status.running)
        {
            json["running"].push_back(ToJson(step));
        }
        for (const auto& process : processes)
        {
            json["processes"].push_back(ToJson(process));
        }
        output.WriteJson(json);
    }

    static void WriteText(Output& output, const Services::SystemStatus& status,
                          const std::vector<Services::ProcessStatus>& processes,
                          const std::map<std::string, int>& components)
    {
        output.WriteLine(
            fmt::format("System '{}' is {}{} for {} (since {}).", status.name,
                        output.Paint(status.state, status.hasError ? Style::Bad : GetStateStyle(status.state)),
                        status.hasError && status.state == "running" ? " with errors" : "",
                        FormatDuration(status.now - status.since), FormatTime(status.since)));
        output.WriteLine(fmt::format("Configuration: {}", status.configuration));
        if (status.failure.time != 0)
        {
            output.WriteLine("Failure: " + System::Commons::MakePlainText(status.failure.text));
        }
        for (const auto& step : status.running)
        {
            output.WriteLine(
                fmt::format("Now: {}, for {}.", Describe(step), FormatDuration((step.end - step.begin) / 1000)));
        }
        Table table({{"PROCESS"},
                     {"STATE"},
                     {"PID", Table::Align::Right},
                     {"UPTIME", Table::Align::Right},
                     {"MEMORY", Table::Align::Right},
                     {"CPU", Table::Align::Right},
                     {"THREADS", Table::Align::Right}});
        for (const auto& process : processes)
        {
            const bool isThere = process.processId != 0;
            const auto& resources = process.resources;
            table.AddRow(
                {process.name,
                 {process.state, GetStateStyle(process.state)},
                 isThere ? fmt::format("{}", process.processId) : "-",
                 isThere && process.startTime != 0 ? FormatDuration(status.now - process.startTime) : "-",
                 FormatBytes(resources.proportionalBytes != 0 ? resources.proportionalBytes : resources.residentBytes),
                 isThere ? FormatDuration(resources.userTime + resources.systemTime) : "-",
                 isThere ? fmt::format("{}", resources.threads) : "-"});
        }
        output.WriteLine("");
        output.WriteTable(table);
        Table states({{"COMPONENTS"}, {"NUMBER", Table::Align::Right}});
        for (const auto& [state, count] : components)
        {
            states.AddRow({{state, GetStateStyle(state)}, fmt::format("{}", count)});
        }
        if (!states.IsEmpty())
        {
            output.WriteLine("");
            output.WriteTable(states);
        }
    }
};

} // namespace

std::unique_ptr<Command> CreateStatus()
{
    return std::make_unique<Status>();
}

} // namespace Vela::Kiroctl
