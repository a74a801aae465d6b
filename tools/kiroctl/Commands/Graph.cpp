#include "../Client/RunningPlan.hpp"
#include "../Command.hpp"
#include "../Graph/PlanGraph.hpp"
#include "../Plan/PlanArguments.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Graph final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        arguments.Declare(command);
        command.AddFlag("--running", isRunning,
                        "Draw the system that runs, with its services, in place of what documents say");
        command.AddText("--format", format, "A picture (svg), or a description for Graphviz (dot)",
                        {.name = "FORMAT", .choices = {"svg", "dot"}});
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        ServiceList services;
        Json plan;
        if (isRunning)
        {
            arguments.CheckUnused("--running");
            const RunningSystem system(session);
            services = ListServices(system);
            plan = DescribeRunningSystem(system, services);
        }
        else
        {
            plan = arguments.Build();
        }
        if (output.IsJson())
        {
            output.WriteJson(ListGraph(plan));
        }
        else
        {
            output.Write(format == "svg" ? DrawSvg(plan) : WriteDot(plan));
        }
        services.CheckComplete();
        return ExitCode::Success;
    }

private:
    PlanArguments arguments;
    bool isRunning = false;
    std::string format = "svg";
};

} // namespace

std::unique_ptr<Command> CreateGraph()
{
    return std::make_unique<Graph>();
}

} // namespace Vela::Kiroctl
