#include "../Command.hpp"
#include "../Describe/ManualPage.hpp"

#include <Vela/VelaVersion.hpp>

namespace Vela::Kiroctl
{

namespace
{

class Manual final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        declaration = command;
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const std::string page = WriteManualPage(declaration.DescribeTool(), VelaVersion::GetCurrent().ToString());
        if (output.IsJson())
        {
            output.WriteJson({{"page", page}});
        }
        else
        {
            output.Write(page);
        }
        return ExitCode::Success;
    }

private:
    CommandDeclaration declaration;
};

} // namespace

std::unique_ptr<Command> CreateManual()
{
    return std::make_unique<Manual>();
}

} // namespace Vela::Kiroctl
