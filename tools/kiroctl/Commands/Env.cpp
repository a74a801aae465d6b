#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <algorithm>

namespace Vela::Kiroctl
{

namespace
{

using Value = System::Rsc::RscVariant<512>;
/// Of what fits into ISystemManagerService::Name.
constexpr std::size_t maxNameSize = 127;

class Env final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.RequireSubcommand();
        list = command.AddSubcommand("list", "List the variables that the system has defined");
        get = command.AddSubcommand("get", "Show the value of a variable");
        set = command.AddSubcommand("set", "Set a variable in every process");
        for (const CommandDeclaration& query : {list, get})
        {
            query.AddText("--process", process, "The process to ask; default: the main process", {.name = "NAME"});
        }
        for (const CommandDeclaration& one : {get, set})
        {
            one.AddText("NAME", name, "Name of the variable", {.isRequired = true});
        }
        set.AddText("VALUE", value, "Its value", {.isRequired = true});
        set.SetFooter("A name has at most 127 bytes, a value at most 512.");
    }

    ExitCode Run(Session& session) override
    {
        if (set.IsNamed())
        {
            CheckDefinition();
        }
        const RunningSystem system(session);
        Output& output = session.GetOutput();
        if (set.IsNamed())
        {
            system.GetManager()->SetEnvironmentVariable(name, Value(value));
            if (output.IsJson())
            {
                output.WriteJson(Json{{"name", name}, {"value", value}});
            }
            return ExitCode::Success;
        }
        const String asked =
            process.empty() ? system.GetDiagnostics()->GetStatus().name : system.SelectProcesses(process).front();
        const auto variables = system.GetProcess(asked)->GetEnvironment();
        return list.IsNamed() ? List(output, variables) : Get(output, variables);
    }

private:
    /// What no process takes is refused here: the system would tell its log alone.
    void CheckDefinition() const
    {
        if (name.empty() || name.find('=') != std::string::npos || name.size() > maxNameSize)
        {
            throw CommandError(ExitCode::Usage,
                               "No variable can have the name '{}': it has 1 to {} bytes, none of them '='.", name,
                               maxNameSize);
        }
        if (value.size() > Value::maxStringSize)
        {
            throw CommandError(ExitCode::Usage, "The value of '{}' has {} bytes, {} are allowed.", name, value.size(),
                               Value::maxStringSize);
        }
    }

    static ExitCode List(Output& output, const std::vector<Services::EnvironmentValue>& variables)
    {
        Json json = Json::array();
        Table table({{"VARIABLE"}, {"VALUE"}, {"KIND"}});
        for (const auto& variable : variables)
        {
            json.push_back(
                Json{{"name", variable.name}, {"value", variable.value}, {"isOverridden", variable.isOverridden}});
            table.AddRow({variable.name, variable.value, variable.isOverridden ? "override" : "default"});
        }
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
        return ExitCode::Success;
    }

    [[nodiscard]] ExitCode Get(Output& output, const std::vector<Services::EnvironmentValue>& variables) const
    {
        const auto found = std::find_if(variables.begin(), variables.end(),
                                        [this](const auto& variable) { return variable.name == name; });
        if (found == variables.end())
        {
            std::vector<String> known;
            known.reserve(variables.size());
            for (const auto& variable : variables)
            {
                known.push_back(variable.name);
            }
            throw CommandError(ExitCode::NotFound, "The system has not defined '{}'.{}", name,
                               SuggestNames(name, known));
        }
        if (output.IsJson())
        {
            output.WriteJson(Json{{"name", name}, {"value", found->value}, {"isOverridden", found->isOverridden}});
        }
        else
        {
            output.WriteLine(found->value);
        }
        return ExitCode::Success;
    }

    CommandDeclaration list;
    CommandDeclaration get;
    CommandDeclaration set;
    std::string process;
    std::string name;
    std::string value;
};

} // namespace

std::unique_ptr<Command> CreateEnv()
{
    return std::make_unique<Env>();
}

} // namespace Vela::Kiroctl
