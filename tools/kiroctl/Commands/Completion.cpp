#include "../Command.hpp"
#include "../Describe/CompletionScript.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Completion final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        declaration = command;
        command.AddText("SHELL", shell, "The shell to complete in",
                        {.name = "SHELL", .isRequired = true, .choices = {"bash", "zsh"}});
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const CommandDescription tool = declaration.DescribeTool();
        const std::string script = shell == "bash" ? WriteBashCompletion(tool) : WriteZshCompletion(tool);
        if (output.IsJson())
        {
            output.WriteJson({{"shell", shell}, {"script", script}});
        }
        else
        {
            output.Write(script);
        }
        return ExitCode::Success;
    }

private:
    CommandDeclaration declaration;
    std::string shell;
};

} // namespace

std::unique_ptr<Command> CreateCompletion()
{
    return std::make_unique<Completion>();
}

} // namespace Vela::Kiroctl
