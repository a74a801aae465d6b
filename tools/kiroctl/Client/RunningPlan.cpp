#include "RunningPlan.hpp"

#include "ServiceList.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

/// The others are how the processes of a system talk to each other, the same in all systems.
bool IsOfComponents(const Json& service)
{
    const auto hasComponent = [](const Json& holder)
    {
        return HasText(holder.at("component"));
    };
    const Json& users = service.at("users");
    return hasComponent(service) || std::any_of(users.begin(), users.end(), hasComponent);
}

} // namespace

Json DescribeRunningSystem(const RunningSystem& system)
{
    const auto diagnostics = system.GetDiagnostics();
    Json plan{{"configuration", diagnostics->GetStatus().configuration}};
    std::map<String, std::set<String>> libraries;
    Json components = Json::array();
    for (const auto& component : diagnostics->GetComponents())
    {
        if (!component.library.empty())
        {
            libraries[component.process].insert(component.library);
        }
        components.push_back({{"name", component.name},
                              {"type", component.type},
                              {"library", component.library},
                              {"process", component.process},
                              {"enabled", component.isEnabled},
                              {"required", component.isRequired},
                              {"origin", component.position},
                              {"problem", component.failure.text}});
    }
    Json processes = Json::array();
    for (const auto& process : diagnostics->GetProcesses())
    {
        Json loaded = Json::array();
        for (const String& library : libraries[process.name])
        {
            loaded.push_back({{"name", library}, {"path", ""}});
        }
        const bool isExternal = process.state == "external";
        processes.push_back({{"name", process.name},
                             {"kind", process.isMain ? "main"
                                      : isExternal   ? "external"
                                                     : "child"},
                             {"command", process.processId == 0 ? "" : fmt::format("pid {}", process.processId)},
                             {"libraries", std::move(loaded)}});
    }
    plan["processes"] = std::move(processes);
    plan["components"] = std::move(components);
    plan["services"] = Json::array();
    for (Json& service : ListServices(system))
    {
        if (IsOfComponents(service))
        {
            plan["services"].push_back(std::move(service));
        }
    }
    return plan;
}

} // namespace Vela::Kiroctl
