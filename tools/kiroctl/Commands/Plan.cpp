#include "../Command.hpp"
#include "../Plan/PlanArguments.hpp"
#include "../Plan/PlanText.hpp"

#include <set>

namespace Vela::Kiroctl
{

namespace
{

class Plan final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        arguments.Declare(command);
        command.AddText("--order", order, "The way up (start) or the way down (stop)",
                        {.name = "ORDER", .choices = {"start", "stop"}});
        command.AddText("--diff", otherConfiguration, "Tell what is different with another configuration document",
                        {.name = "CONFIG"});
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const bool isStopOrder = order == "stop";
        if (isStopOrder && !otherConfiguration.empty())
        {
            throw CommandError(ExitCode::Usage, "--diff compares whole plans: it takes no --order.");
        }
        Json plan = arguments.Build();
        if (!otherConfiguration.empty())
        {
            return RunDiff(output, plan);
        }
        const bool hasErrors = plan.at("errors") != 0;
        if (output.IsJson())
        {
            if (isStopOrder)
            {
                std::reverse(plan["components"].begin(), plan["components"].end());
            }
            output.WriteJson(plan);
        }
        else
        {
            WritePlan(output, plan, isStopOrder);
        }
        if (hasErrors)
        {
            output.Flush();
            throw CommandError(ExitCode::Negative, "The documents have errors: this would not start ('kiroctl check' "
                                                   "tells them).");
        }
        return ExitCode::Success;
    }

private:
    ExitCode RunDiff(Output& output, const Json& plan) const
    {
        PlanArguments others = arguments;
        others.documents.configuration = otherConfiguration;
        const Json other = others.Build();
        RequireSound(plan, other);
        const Json differences = ComparePlans(plan, other);
        if (output.IsJson())
        {
            output.WriteJson(differences);
        }
        else
        {
            WriteDifferences(output, differences);
        }
        return differences.empty() ? ExitCode::Success : ExitCode::Negative;
    }

    /// What a broken document does not say would pass for a difference.
    static void RequireSound(const Json& plan, const Json& other)
    {
        std::set<std::string> files;
        for (const Json* each : {&plan, &other})
        {
            for (const Json& file : each->at("faultyFiles"))
            {
                files.insert(file.get<std::string>());
            }
        }
        if (!files.empty())
        {
            throw CommandError(ExitCode::Failed,
                               "The plans cannot be compared, there are errors in '{}' ('kiroctl check' tells them).",
                               fmt::join(files, "' and '"));
        }
    }

    PlanArguments arguments;
    String order = "start";
    String otherConfiguration;
};

} // namespace

std::unique_ptr<Command> CreatePlan()
{
    return std::make_unique<Plan>();
}

} // namespace Vela::Kiroctl
