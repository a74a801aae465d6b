#include "../Client/ServiceList.hpp"
#include "../Command.hpp"

#include <algorithm>

namespace Vela::Kiroctl
{

namespace
{

/// "Tank1" of a component, "(Plant)" of a process.
std::string GetHolder(const Json& holder)
{
    const std::string component = holder.at("component");
    return component.empty() ? fmt::format("({})", holder.at("process").get<std::string>()) : component;
}

class ServicesCommand final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("--component", component, "Only those that a component publishes or uses", {.name = "NAME"});
    }

    ExitCode Run(Session& session) override
    {
        const RunningSystem system(session);
        if (!component.empty())
        {
            RequireComponent(system);
        }
        Output& output = session.GetOutput();
        Json json = Json::array();
        Table table({{"SERVICE"}, {"PROCESS"}, {"PUBLISHED BY"}, {"USED BY"}});
        ServiceList list = ListServices(system);
        for (Json& service : list.services)
        {
            std::string users;
            bool isWanted = component.empty() || service.at("component") == component;
            for (const Json& user : service.at("users"))
            {
                users += (users.empty() ? "" : " ") + GetHolder(user);
                isWanted = isWanted || user.at("component") == component;
            }
            if (isWanted)
            {
                table.AddRow({service.at("name").get<std::string>(), service.at("process").get<std::string>(),
                              service.at("isPublished") == true ? GetHolder(service) : "-",
                              users.empty() ? "-" : users});
                json.push_back(std::move(service));
            }
        }
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
        list.CheckComplete();
        return ExitCode::Success;
    }

private:
    void RequireComponent(const RunningSystem& system) const
    {
        const auto known = RunningSystem::ListComponents(system.GetDiagnostics()->GetComponents());
        if (std::find(known.begin(), known.end(), component) == known.end())
        {
            ThrowUnknown("component", component, known);
        }
    }

    std::string component;
};

} // namespace

std::unique_ptr<Command> CreateServices()
{
    return std::make_unique<ServicesCommand>();
}

} // namespace Vela::Kiroctl
