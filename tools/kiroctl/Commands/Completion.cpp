#include "../Command.hpp"
#include "../Describe/CompletionScript.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Completion final : public Command
{
public:
    void Declare(CLI::App& app) override
    {
        command = &app;
        app.add_option("SHELL", shell, "The shell to complete in")
            ->type_name("SHELL")
            ->required()
            ->check(CLI::IsMember({"bash", "zsh"}));
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const CommandDescription tool = DescribeCommand(GetRoot(*command));
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
    const CLI::App* command = nullptr;
    std::string shell;
};

} // namespace

std::unique_ptr<Command> CreateCompletion()
{
    return std::make_unique<Completion>();
}

} // namespace Vela::Kiroctl
