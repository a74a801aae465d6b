#include "../Command.hpp"
#include "../Offline/DocumentArguments.hpp"
#include "../Plan/PlanBuilder.hpp"
#include "../Plan/PlanText.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Plan final : public Command
{
public:
    void Declare(CLI::App& app) override
    {
        DeclareDocuments(app, documents);
        app.add_option("--order", order, "The way up (start) or the way down (stop)")
            ->type_name("ORDER")
            ->capture_default_str()
            ->check(CLI::IsMember({"start", "stop"}));
        app.add_option("--diff", otherConfiguration, "Tell what is different with another configuration document")
            ->type_name("CONFIG");
        DeclareNoLoad(app, isLoadingForbidden);
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        Json plan = BuildPlan(documents, !isLoadingForbidden);
        if (!otherConfiguration.empty())
        {
            return RunDiff(output, plan);
        }
        const bool isStopOrder = order == "stop";
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
        SystemDocuments others = documents;
        others.configuration = otherConfiguration;
        const Json differences = ComparePlans(plan, BuildPlan(others, !isLoadingForbidden));
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

    SystemDocuments documents;
    String order = "start";
    String otherConfiguration;
    bool isLoadingForbidden = false;
};

} // namespace

std::unique_ptr<Command> CreatePlan()
{
    return std::make_unique<Plan>();
}

} // namespace Vela::Kiroctl
