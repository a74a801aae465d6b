// kiro-bench [--quick] [ROW...]: measures the runtime beside its floors and prints a table.
// kiro-bench rpc --line: one remote call, as "p50_us p99_us mean_us calls_per_s".
#include "Rows/Rows.hpp"

#include <Vela/AppDomain.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace
{

using namespace Vela::Benchmarks;

struct Group
{
    const char* name;
    const char* description;
    std::vector<Row> (*measure)(Effort effort);
};

constexpr Group groups[] = {
    {"rpc", "one call, between processes and inside one", MeasureRemoteCalls},
    {"clients", "calls of 1 to 64 clients at once, and what a connection takes", MeasureClients},
    {"start", "start of 1, 8 and 32 child processes", MeasureStart},
    {"components", "set-up and way down of 100 to 10,000 components", MeasureComponents},
    {"load", "loading a configuration of 10,000 components", MeasureLoad},
    {"idle", "memory and wake-ups of a system that has nothing to do", MeasureIdle},
    {"log", "a log statement, disabled and written", MeasureLog},
    {"notify", "a notification to 1 and to 32 processes", MeasureNotifications},
};

const std::map<std::string, void (*)(const Arguments&)> roles{
    {"raw-server", ServeRawPingPong}, {"server", ServeCalls}, {"broker", RunBroker}, {"subscriber", RunSubscriber}};

int PrintUsage(std::ostream& stream, int exitCode)
{
    stream << "usage: kiro-bench [--quick] [ROW...]\n       kiro-bench rpc --line\n\nrows:\n";
    for (const Group& group : groups)
    {
        stream << "  " << group.name << std::string(12 - std::string(group.name).size(), ' ') << group.description
               << '\n';
    }
    return exitCode;
}

int Run(const Arguments& arguments)
{
    if (arguments.size() >= 2 && arguments[0] == "--as")
    {
        roles.at(arguments[1])(Arguments(arguments.begin() + 2, arguments.end()));
        return 0;
    }
    Effort effort;
    bool isLine = false;
    std::vector<const Group*> chosen;
    for (const std::string& argument : arguments)
    {
        const auto* const group = std::find_if(std::begin(groups), std::end(groups),
                                               [&](const Group& known) { return argument == known.name; });
        if (argument == "--quick")
        {
            effort.isQuick = true;
        }
        else if (argument == "--help")
        {
            return PrintUsage(std::cout, 0);
        }
        else if (argument == "--line")
        {
            isLine = true;
        }
        else if (group != std::end(groups))
        {
            chosen.push_back(group);
        }
        else
        {
            return PrintUsage(std::cerr, 2);
        }
    }
    if (isLine)
    {
        if (chosen.size() != 1 || std::string(chosen[0]->name) != "rpc")
        {
            return PrintUsage(std::cerr, 2);
        }
        std::cout << MeasureRemoteCallLine(effort) << '\n';
        return 0;
    }
    std::vector<Row> rows;
    for (const Group& group : groups)
    {
        if (chosen.empty() || std::find(chosen.begin(), chosen.end(), &group) != chosen.end())
        {
            auto measured = group.measure(effort);
            rows.insert(rows.end(), measured.begin(), measured.end());
        }
    }
    PrintTable(std::cout, rows);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        Vela::AppDomain::CreateInstance();
        return Run(Arguments(argv + 1, argv + argc));
    }
    catch (const std::exception& exception)
    {
        std::cerr << "\nkiro-bench: " << exception.what() << '\n';
        return 1;
    }
}
