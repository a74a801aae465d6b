#include "../Command.hpp"

#include <Vela/System/Kiro/BinaryContract.hpp>
#include <Vela/VelaVersion.hpp>

namespace Vela::Kiroctl
{

namespace
{

namespace BinaryContract = System::Kiro::BinaryContract;

class Version final : public Command
{
public:
    void Declare(const CommandDeclaration&) override
    {
    }

    ExitCode Run(Session& session) override
    {
        Output& output = session.GetOutput();
        const BasicVersion& version = VelaVersion::GetCurrent();
        const std::string layout = fmt::format("{:016x}", BinaryContract::layoutHash);
        if (output.IsJson())
        {
            output.WriteJson(Json{{"version", version.ToString()},
                                  {"contract", BinaryContract::contractVersion},
                                  {"layout", layout},
                                  {"compiler", BinaryContract::compiler}});
            return ExitCode::Success;
        }
        Table table({{"PART"}, {"VALUE"}});
        table.AddRow({"version", version.ToString()});
        table.AddRow({"library contract", fmt::format("{}", BinaryContract::contractVersion)});
        table.AddRow({"interface layout", layout});
        table.AddRow({"compiler", std::string(BinaryContract::compiler)});
        output.WriteTable(table);
        return ExitCode::Success;
    }
};

} // namespace

std::unique_ptr<Command> CreateVersion()
{
    return std::make_unique<Version>();
}

} // namespace Vela::Kiroctl
