#include "PlanGraph.hpp"

#include <fmt/format.h>

#include <map>
#include <set>

namespace Vela::Kiroctl
{

namespace
{

std::string Quote(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text)
    {
        if (character == '"' || character == '\\')
        {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

/// The node of a component, or of the process when no component is meant.
std::string NameHolder(const Json& holder)
{
    const std::string component = holder.at("component");
    return component.empty() ? "process " + holder.at("process").get<std::string>() : "component " + component;
}

/// By how it is found.
std::string NameService(const Json& service)
{
    const std::string provider = service.at("provider");
    return fmt::format("service {} of {}", service.at("name").get<std::string>(),
                       provider.empty() ? "process " + service.at("process").get<std::string>()
                                        : "component " + provider);
}

/// Processes that publish or use a service themselves: they need a node where edges begin and end.
std::set<std::string> ListHolders(const Json& services)
{
    std::set<std::string> processes;
    for (const Json& service : services)
    {
        processes.insert(NameHolder(service));
        for (const Json& user : service.at("users"))
        {
            processes.insert(NameHolder(user));
        }
    }
    return processes;
}

std::string WriteServices(const Json& services)
{
    std::string text;
    for (const Json& service : services)
    {
        const std::string node = Quote(NameService(service));
        text += fmt::format("  {} [label={}, tooltip={}, shape=ellipse, style=solid];\n  {} -> {} [dir=none];\n", node,
                            Quote(GetShortName(service)), Quote(service.at("name").get<std::string>()),
                            Quote(NameHolder(service)), node);
        for (const Json& user : service.at("users"))
        {
            text += fmt::format("  {} -> {} [style=dashed];\n", Quote(NameHolder(user)), node);
        }
    }
    return text;
}

} // namespace

Json ListGraph(const Json& plan)
{
    Json nodes = Json::array();
    Json edges = Json::array();
    std::set<std::string> libraries;
    std::string mainProcess;
    for (const Json& process : plan.at("processes"))
    {
        mainProcess = process.at("kind") == "main" ? process.at("name").get<std::string>() : mainProcess;
    }
    for (const Json& process : plan.at("processes"))
    {
        const std::string name = process.at("name");
        nodes.push_back({{"kind", "process"}, {"name", name}, {"role", process.at("kind")}});
        if (name != mainProcess && process.at("kind") != "external")
        {
            edges.push_back({{"kind", "starts"}, {"from", mainProcess}, {"to", name}});
        }
        for (const Json& library : process.at("libraries"))
        {
            if (libraries.insert(library.at("name").get<std::string>()).second)
            {
                nodes.push_back({{"kind", "library"}, {"name", library.at("name")}, {"path", library.at("path")}});
            }
            edges.push_back({{"kind", "loads"}, {"from", name}, {"to", library.at("name")}});
        }
    }
    for (const Json& component : plan.at("components"))
    {
        nodes.push_back({{"kind", "component"}, {"name", component.at("name")}, {"type", component.at("type")}});
        edges.push_back({{"kind", "runs"}, {"from", component.at("process")}, {"to", component.at("name")}});
        if (HasText(component.at("library")))
        {
            edges.push_back({{"kind", "comesFrom"}, {"from", component.at("name")}, {"to", component.at("library")}});
        }
    }
    for (const Json& service : GetServices(plan))
    {
        const std::string name = NameService(service);
        nodes.push_back({{"kind", "service"},
                         {"name", name},
                         {"service", service.at("name")},
                         {"interface", service.at("interface")}});
        const auto getName = [](const Json& holder)
        {
            return HasText(holder.at("component")) ? holder.at("component") : holder.at("process");
        };
        edges.push_back({{"kind", "publishes"}, {"from", getName(service)}, {"to", name}});
        for (const Json& user : service.at("users"))
        {
            edges.push_back({{"kind", "uses"}, {"from", getName(user)}, {"to", name}});
        }
    }
    return {{"nodes", std::move(nodes)}, {"edges", std::move(edges)}};
}

std::string WriteDot(const Json& plan)
{
    std::string text = "digraph system {\n  rankdir=LR;\n  compound=true;\n  node [shape=box, style=rounded, "
                       "fontname=\"sans-serif\"];\n";
    const Json services = GetServices(plan);
    const std::set<std::string> holders = ListHolders(services);
    std::set<std::string> libraries;
    std::size_t cluster = 0;
    int number = 0;
    std::map<std::string, int> numbers;
    for (const Json& component : plan.at("components"))
    {
        numbers[component.at("name")] = ++number;
    }
    for (const Json& process : plan.at("processes"))
    {
        text += fmt::format(
            "  subgraph cluster_{} {{\n    label={};\n    style={};\n", cluster++,
            Quote(process.at("name").get<std::string>() + " (" + process.at("kind").get<std::string>() + ")"),
            process.at("kind") == "external" ? "dashed" : "solid");
        for (const Json& component : plan.at("components"))
        {
            if (component.at("process") == process.at("name"))
            {
                const std::string componentName = component.at("name");
                text += fmt::format("    {} [label={}{}];\n", Quote("component " + componentName),
                                    Quote(fmt::format("{}. {}", numbers[componentName], componentName)),
                                    component.at("enabled") == true ? "" : ", style=\"rounded,dashed\"");
            }
        }
        const std::string name = process.at("name");
        if (holders.contains("process " + name))
        {
            text += fmt::format("    {} [label={}, shape=plaintext];\n", Quote("process " + name), Quote(name));
        }
        text += "  }\n";
        for (const Json& library : process.at("libraries"))
        {
            const std::string libraryName = library.at("name");
            if (libraries.insert(libraryName).second)
            {
                text += fmt::format("  {} [label={}, shape=folder, style=solid];\n", Quote("library " + libraryName),
                                    Quote(libraryName));
            }
        }
    }
    for (const Json& component : plan.at("components"))
    {
        if (HasText(component.at("library")))
        {
            text += fmt::format("  {} -> {};\n", Quote("component " + component.at("name").get<std::string>()),
                                Quote("library " + component.at("library").get<std::string>()));
        }
    }
    return RepairText(text + WriteServices(services) + "}\n");
}

} // namespace Vela::Kiroctl
