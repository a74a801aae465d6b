#include "PlanText.hpp"

#include <algorithm>

namespace Vela::Kiroctl
{

namespace
{

/// For people the file's name is enough, and for the document that everybody has in mind its line; with --json the
/// whole path is there.
std::string GetShortOrigin(const Json& item, const Json& document)
{
    const std::string origin = item.at("origin");
    const std::size_t colon = origin.rfind(':');
    if (origin.empty())
    {
        return "default";
    }
    return origin.compare(0, colon, document.get<std::string>()) == 0 ? origin.substr(colon)
                                                                      : origin.substr(origin.rfind('/') + 1);
}

void WriteHeading(Output& output, std::string_view heading)
{
    output.WriteLine(output.Paint(heading, Style::Heading));
}

void WriteProcesses(Output& output, const Json& plan)
{
    WriteHeading(output, "Processes");
    Table table({{"PROCESS"}, {"KIND"}, {"COMMAND"}, {"FROM"}});
    Table libraries({{"PROCESS"}, {"LIBRARY"}, {"FILE"}, {"FROM"}});
    for (const Json& process : plan.at("processes"))
    {
        table.AddRow({process.at("name").get<std::string>(), process.at("kind").get<std::string>(),
                      process.at("command").get<std::string>(), GetShortOrigin(process, plan.at("configuration"))});
        for (const Json& library : process.at("libraries"))
        {
            libraries.AddRow({process.at("name").get<std::string>(), library.at("name").get<std::string>(),
                              library.at("path").get<std::string>(),
                              GetShortOrigin(library, plan.at("configuration"))});
        }
    }
    output.WriteTable(table);
    if (!libraries.IsEmpty())
    {
        output.WriteLine("");
        WriteHeading(output, "Libraries");
        output.WriteTable(libraries);
    }
}

std::string DescribeComponent(const Json& component)
{
    std::string notes;
    const auto add = [&notes](const std::string& note)
    {
        notes += (notes.empty() ? "" : ", ") + note;
    };
    if (component.at("required") == true)
    {
        add("required");
    }
    if (component.at("controller") == true)
    {
        add("controller");
    }
    if (component.at("enabled") == false)
    {
        add("disabled");
    }
    if (HasText(component.at("copyOf")))
    {
        add("copy of " + component.at("copyOf").get<std::string>());
    }
    if (HasText(component.at("problem")))
    {
        add(component.at("problem"));
    }
    return notes;
}

std::string GetOrderText(const Json& component)
{
    if (component.at("startOrder").is_null())
    {
        return "?";
    }
    return component.at("startOrder").dump() + (component.at("orderFrom") == "configuration" ? "" : " own");
}

void WriteComponents(Output& output, const Json& plan, bool isStopOrder)
{
    WriteHeading(output, isStopOrder ? "Components in stop order" : "Components in start order");
    Table table({{"", Table::Align::Right}, {"COMPONENT"}, {"PROCESS"}, {"TYPE"}, {"ORDER"}, {"NOTES"}, {"FROM"}});
    std::vector<Json> components = plan.at("components");
    if (isStopOrder)
    {
        std::reverse(components.begin(), components.end());
    }
    int number = 0;
    for (const Json& component : components)
    {
        const bool hasProblem = HasText(component.at("problem"));
        table.AddRow({std::to_string(++number),
                      component.at("name").get<std::string>(),
                      component.at("process").get<std::string>(),
                      component.at("type").get<std::string>(),
                      GetOrderText(component),
                      {DescribeComponent(component), hasProblem ? Style::Warning : Style::Plain},
                      GetShortOrigin(component, plan.at("configuration"))});
    }
    output.WriteTable(table);
}

std::string DescribeOverrode(const Json& item, const Json& document)
{
    std::string text;
    for (const Json& overrode : item.at("overrode"))
    {
        text += fmt::format("{}'{}' ({})", text.empty() ? "" : ", ", overrode.at("value").get<std::string>(),
                            GetShortOrigin(overrode, document));
    }
    return text;
}

void WriteVariables(Output& output, const Json& plan)
{
    if (!plan.at("variables").empty())
    {
        output.WriteLine("");
        WriteHeading(output, "Environment variables");
        Table table({{"VARIABLE"}, {"VALUE"}, {"AS WRITTEN"}, {"FROM"}, {"OVERRODE"}});
        for (const Json& variable : plan.at("variables"))
        {
            const bool isSame = variable.at("raw") == variable.at("value");
            table.AddRow({variable.at("name").get<std::string>(), variable.at("value").get<std::string>(),
                          isSame ? "" : variable.at("raw").get<std::string>(),
                          GetShortOrigin(variable, plan.at("settings")),
                          DescribeOverrode(variable, plan.at("settings"))});
        }
        output.WriteTable(table);
    }
    if (!plan.at("values").empty())
    {
        output.WriteLine("");
        WriteHeading(output, "Settings");
        Table table({{"SETTING"}, {"VALUE"}, {"FROM"}, {"OVERRODE"}});
        for (const Json& value : plan.at("values"))
        {
            table.AddRow({value.at("name").get<std::string>(), value.at("value").get<std::string>(),
                          GetShortOrigin(value, plan.at("settings")), DescribeOverrode(value, plan.at("settings"))});
        }
        output.WriteTable(table);
    }
}

} // namespace

void WritePlan(Output& output, const Json& plan, bool isStopOrder)
{
    output.WriteLine(fmt::format("settings:      {}", plan.at("settings").get<std::string>()));
    output.WriteLine(fmt::format("configuration: {}", plan.at("configuration").get<std::string>()));
    output.WriteLine("");
    if (isStopOrder)
    {
        // The way down is the way up from its end: components first, then the processes, all at once.
        WriteComponents(output, plan, true);
        output.WriteLine("");
        WriteProcesses(output, plan);
        return;
    }
    WriteProcesses(output, plan);
    output.WriteLine("");
    WriteComponents(output, plan, false);
    WriteVariables(output, plan);
}

} // namespace Vela::Kiroctl
