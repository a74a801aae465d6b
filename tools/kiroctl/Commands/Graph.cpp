#include "../Command.hpp"
#include "../Graph/PlanGraph.hpp"
#include "../Offline/DocumentArguments.hpp"
#include "../Plan/PlanBuilder.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Graph final : public Command
{
public:
    void Declare(CLI::App& app) override
    {
        DeclareDocuments(app, documents);
        app.add_option("--format", format, "A picture (svg), or a description for Graphviz (dot)")
            ->type_name("FORMAT")
            ->capture_default_str()
            ->check(CLI::IsMember({"svg", "dot"}));
        DeclareNoLoad(app, isLoadingForbidden);
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const Json plan = BuildPlan(documents, !isLoadingForbidden);
        if (output.IsJson())
        {
            output.WriteJson(ListGraph(plan));
        }
        else
        {
            output.Write(format == "svg" ? DrawSvg(plan) : WriteDot(plan));
        }
        return ExitCode::Success;
    }

private:
    SystemDocuments documents;
    String format = "svg";
    bool isLoadingForbidden = false;
};

} // namespace

std::unique_ptr<Command> CreateGraph()
{
    return std::make_unique<Graph>();
}

} // namespace Vela::Kiroctl
