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
    void Declare(CLI::App& app) override
    {
        command = &app;
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const std::string page =
            WriteManualPage(DescribeCommand(GetRoot(*command)), VelaVersion::GetCurrent().ToString());
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
    const CLI::App* command = nullptr;
};

} // namespace

std::unique_ptr<Command> CreateManual()
{
    return std::make_unique<Manual>();
}

} // namespace Vela::Kiroctl
