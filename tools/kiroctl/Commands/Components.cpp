#include "../Client/ComponentStates.hpp"
#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

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
        const RunningSystem system(session);
        const auto components = system.GetDiagnostics()->GetComponents();
        CheckFilters(system, components);
        Output& output = session.GetOutput();
        Json json = Json::array();
        Table table({{"COMPONENT"}, {"PROCESS"}, {"TYPE"}, {"ORDER", Table::Align::Right}, {"STATE"}});
        for (const auto& component : components)
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
    /// A misspelt name must not pass for one that nothing fits.
    void CheckFilters(const RunningSystem& system, const std::vector<Services::ComponentStatus>& components) const
    {
        if (!process.empty())
        {
            static_cast<void>(system.SelectProcesses(process));
        }
        if (!type.empty())
        {
            std::set<String> types;
            std::transform(components.begin(), components.end(), std::inserter(types, types.end()),
                           [](const auto& component) { return component.type; });
            if (!types.contains(type))
            {
                ThrowUnknown("component of type", type, std::vector<String>(types.begin(), types.end()));
            }
        }
        const auto isMeant = [this](const ComponentState& known)
        {
            return known.name == state;
        };
        if (!state.empty() && std::none_of(componentStates.begin(), componentStates.end(), isMeant))
        {
            std::vector<std::string_view> names;
            std::transform(componentStates.begin(), componentStates.end(), std::back_inserter(names),
                           [](const ComponentState& known) { return known.name; });
            throw CommandError(ExitCode::NotFound, "There is no state '{}' of components: {}.", state,
                               fmt::join(names, ", "));
        }
    }

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
