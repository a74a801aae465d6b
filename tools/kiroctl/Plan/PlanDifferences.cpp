#include "PlanText.hpp"

#include <map>
#include <set>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

using ItemsByName = std::map<std::string, Json>;

ItemsByName GetItems(const Json& plan, const char* list)
{
    ItemsByName items;
    for (const Json& item : plan.at(list))
    {
        items.emplace(item.at("name").get<std::string>(), item);
    }
    return items;
}

/// Where something is written may change without anything else.
bool IsCompared(const std::string& field)
{
    return field != "origin" && field != "overrode";
}

/// A process's command names the documents, which are what is different between two plans.
Json GetComparable(const Json& value)
{
    if (!value.is_array())
    {
        return value;
    }
    Json names = Json::array();
    for (const Json& item : value)
    {
        names.push_back(item.at("name").get<std::string>() + "=" + item.at("path").get<std::string>());
    }
    return names;
}

void Compare(Json& differences, const char* what, const std::string& name, const Json& before, const Json& after)
{
    for (const auto& [field, value] : before.items())
    {
        const bool isMainCommand = field == "command" && before.at("kind") == "main";
        if (!IsCompared(field) || isMainCommand)
        {
            continue;
        }
        const Json old = GetComparable(value);
        const Json present = GetComparable(after.at(field));
        if (old != present)
        {
            differences.push_back({{"what", what},
                                   {"name", name},
                                   {"change", "changed"},
                                   {"field", field},
                                   {"before", old},
                                   {"after", present}});
        }
    }
}

/// The names that are in both plans, in the order of one of them.
std::vector<std::string> GetOrder(const Json& plan, const ItemsByName& items, const ItemsByName& others)
{
    std::vector<std::string> names;
    for (const Json& component : plan.at("components"))
    {
        const std::string name = component.at("name");
        if (items.contains(name) && others.contains(name))
        {
            names.push_back(name);
        }
    }
    return names;
}

std::string Show(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

} // namespace

Json ComparePlans(const Json& plan, const Json& other)
{
    static constexpr std::pair<const char*, const char*> lists[] = {
        {"process", "processes"}, {"component", "components"}, {"variable", "variables"}, {"value", "values"}};
    Json differences = Json::array();
    for (const auto& [what, list] : lists)
    {
        const ItemsByName before = GetItems(plan, list);
        const ItemsByName after = GetItems(other, list);
        for (const auto& [name, item] : before)
        {
            const auto found = after.find(name);
            if (found == after.end())
            {
                differences.push_back({{"what", what}, {"name", name}, {"change", "removed"}});
                continue;
            }
            Compare(differences, what, name, item, found->second);
        }
        for (const auto& [name, item] : after)
        {
            if (!before.contains(name))
            {
                differences.push_back({{"what", what}, {"name", name}, {"change", "added"}});
            }
        }
    }
    const ItemsByName before = GetItems(plan, "components");
    const ItemsByName after = GetItems(other, "components");
    const auto oldOrder = GetOrder(plan, before, after);
    const auto newOrder = GetOrder(other, after, before);
    if (oldOrder != newOrder)
    {
        differences.push_back({{"what", "order"},
                               {"name", "components"},
                               {"change", "moved"},
                               {"field", "order"},
                               {"before", oldOrder},
                               {"after", newOrder}});
    }
    return differences;
}

void WriteDifferences(Output& output, const Json& differences)
{
    if (differences.empty())
    {
        output.WriteLine("The plans are the same.");
        return;
    }
    Table table({{"WHAT"}, {"NAME"}, {"CHANGE"}, {"BEFORE"}, {"AFTER"}});
    for (const Json& difference : differences)
    {
        const std::string change = difference.at("change");
        const bool hasField = difference.contains("field");
        table.AddRow(
            {difference.at("what").get<std::string>(),
             difference.at("name").get<std::string>(),
             {hasField ? difference.at("field").get<std::string>() : change, change == "added"     ? Style::Good
                                                                             : change == "removed" ? Style::Bad
                                                                                                   : Style::Warning},
             hasField ? Show(difference.at("before")) : "",
             hasField ? Show(difference.at("after")) : ""});
    }
    output.WriteTable(table);
}

} // namespace Vela::Kiroctl
