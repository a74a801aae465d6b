#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <limits>

namespace Vela::Kiroctl
{

namespace
{

class Components final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("--process", process, "Only those of a process", {.name = "NAME"});
        command.AddText("--type", type, "Only those of a type", {.name = "TYPE"});
        command.AddText("--state", state, "Only those in a state", {.name = "STATE"});
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        Json json = Json::array();
        Table table({{"COMPONENT"}, {"PROCESS"}, {"TYPE"}, {"ORDER", Table::Align::Right}, {"STATE"}});
        for (const auto& component : RunningSystem(session).GetDiagnostics()->GetComponents())
        {
            const auto fits = [](const std::string& wanted, const std::string& value)
            {
                return wanted.empty() || wanted == value;
            };
            if (!fits(process, component.process) || !fits(type, component.type) || !fits(state, component.state))
            {
                continue;
            }
            json.push_back(ToJson(component));
            const bool hasOrder = component.startOrder != std::numeric_limits<std::uint32_t>::max();
            const bool isInStep = component.state == "busy" || component.state == "failed";
            table.AddRow({component.name,
                          component.process,
                          component.type,
                          hasOrder ? fmt::format("{}", component.startOrder) : "-",
                          {isInStep ? component.state + ": " + component.step : component.state,
                           GetStateStyle(component.state)}});
        }
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
        return ExitCode::Success;
    }

private:
    std::string process;
    std::string type;
    std::string state;
};

} // namespace

std::unique_ptr<Command> CreateComponents()
{
    return std::make_unique<Components>();
}

} // namespace Vela::Kiroctl
