#include "../Check/Report.hpp"
#include "../Check/SystemCheck.hpp"
#include "../Command.hpp"
#include "../Offline/DocumentArguments.hpp"

namespace Vela::Kiroctl
{

namespace
{

class Check final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        DeclareDocuments(command, documents);
        command.AddFlag("--strict", isStrict, "Take warnings for errors");
        command.AddFlag("--no-load", isLoadingForbidden,
                        "Look at libraries without loading them: their needs and types stay unknown");
        command.AddFlag("--codes", isCodesWanted, "List what can be found, and check nothing");
    }

    ExitCode Run(Session& session) override
    {
        if (isCodesWanted)
        {
            Report::WriteCodes(session.GetOutput());
            return ExitCode::Success;
        }
        LoadRecord record;
        const OfflineSystem system(documents, record);
        SystemCheck(system, record, !isLoadingForbidden).Run();
        const Report report(record.GetFindings(), system.documents.settings, isStrict);
        report.Write(session.GetOutput());
        return report.HasFailed() ? ExitCode::Negative : ExitCode::Success;
    }

private:
    SystemDocuments documents;
    bool isStrict = false;
    bool isLoadingForbidden = false;
    bool isCodesWanted = false;
};

} // namespace

std::unique_ptr<Command> CreateCheck()
{
    return std::make_unique<Check>();
}

} // namespace Vela::Kiroctl
