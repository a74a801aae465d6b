#include "RunningPlan.hpp"

#include <map>
#include <set>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

/// How the processes of a system talk to each other, the same in all systems.
bool IsOfFramework(const Json& service)
{
    return service.at("name").get_ref<const std::string&>().starts_with("Vela.System.");
}

} // namespace

Json DescribeRunningSystem(const RunningSystem& system, const ServiceList& services)
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
    std::set<String> names;
    for (const auto& process : diagnostics->GetProcesses())
    {
        Json loaded = Json::array();
        for (const String& library : libraries[process.name])
        {
            loaded.push_back({{"name", library}, {"path", ""}});
        }
        names.insert(process.name);
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
    for (const Json& service : services.services)
    {
        if (!IsOfFramework(service) && names.contains(service.at("process").get<std::string>()))
        {
            plan["services"].push_back(service);
        }
    }
    return plan;
}

} // namespace Vela::Kiroctl
