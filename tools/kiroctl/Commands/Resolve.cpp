#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Resolve final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("NAME", name, "Old name of an environment variable", {.isRequired = true});
    }

    ExitCode Run(Session& session) override
    {
        Services::ISystemManagerService::Name current;
        if (!RunningSystem(session).GetManager()->ResolveDeprecatedVariableName(name, current))
        {
            throw CommandError(ExitCode::NotFound, "'{}' is no old name of an environment variable.", name);
        }
        Output& output = session.GetOutput();
        if (output.IsJson())
        {
            output.WriteJson(Json{{"name", name}, {"currentName", current.ToString()}});
        }
        else
        {
            output.WriteLine(current.ToString());
        }
        return ExitCode::Success;
    }

private:
    std::string name;
};

} // namespace

std::unique_ptr<Command> CreateResolve()
{
    return std::make_unique<Resolve>();
}

} // namespace Vela::Kiroctl
