#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Processes final : public Command
{
public:
    void Declare(const CommandDeclaration&) override
    {
    }

    ExitCode Run(Session& session) override
    {
        const auto processes = RunningSystem(session).GetDiagnostics()->GetProcesses();
        Output& output = session.GetOutput();
        Json json = Json::array();
        Table table({{"PROCESS"},
                     {"STATE"},
                     {"PID", Table::Align::Right},
                     {"SHARE", Table::Align::Right},
                     {"RESIDENT", Table::Align::Right},
                     {"USER", Table::Align::Right},
                     {"SYSTEM", Table::Align::Right},
                     {"THREADS", Table::Align::Right}});
        for (const auto& process : processes)
        {
            json.push_back(ToJson(process));
            const bool isThere = process.processId != 0;
            table.AddRow({process.name,
                          {process.state, GetStateStyle(process.state)},
                          isThere ? fmt::format("{}", process.processId) : "-",
                          FormatBytes(process.resources.proportionalBytes),
                          FormatBytes(process.resources.residentBytes),
                          isThere ? FormatDuration(process.resources.userTime) : "-",
                          isThere ? FormatDuration(process.resources.systemTime) : "-",
                          isThere ? fmt::format("{}", process.resources.threads) : "-"});
        }
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
        return ExitCode::Success;
    }
};

} // namespace

std::unique_ptr<Command> CreateProcesses()
{
    return std::make_unique<Processes>();
}

} // namespace Vela::Kiroctl
