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
    return {{"nodes", std::move(nodes)}, {"edges", std::move(edges)}};
}

std::string WriteDot(const Json& plan)
{
    std::string text = "digraph system {\n  rankdir=LR;\n  compound=true;\n  node [shape=box, style=rounded, "
                       "fontname=\"sans-serif\"];\n";
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
                const std::string name = component.at("name");
                text += fmt::format("    {} [label={}{}];\n", Quote("component " + name),
                                    Quote(fmt::format("{}. {}", numbers[name], name)),
                                    component.at("enabled") == true ? "" : ", style=\"rounded,dashed\"");
            }
        }
        text += "  }\n";
        for (const Json& library : process.at("libraries"))
        {
            const std::string name = library.at("name");
            if (libraries.insert(name).second)
            {
                text +=
                    fmt::format("  {} [label={}, shape=folder, style=solid];\n", Quote("library " + name), Quote(name));
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
    return text + "}\n";
}

} // namespace Vela::Kiroctl
