#include "../Command.hpp"
#include "../Library/ExportedNames.hpp"
#include "../Library/LibraryProbe.hpp"

#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Kiro/BinaryContract.hpp>

#include <Contract/Architecture.hpp>
#include <Contract/DynamicSection.hpp>
#include <Contract/LibraryNote.hpp>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Vela::Kiroctl
{

namespace
{

namespace Contract = System::Kiro::Internal::Contract;
using System::Kiro::Internal::Pm::SharedLibraryLoader;

/// All that is found out about one library. What is made for another processor can be read, but not be loaded.
struct Report
{
    String path;
    Contract::Architecture architecture;
    std::optional<Contract::LibraryNote> note;
    /// Empty when it has none.
    String entry;
    std::vector<String> needed;
    /// Nothing where it shows on a machine of its own only.
    std::optional<std::map<String, String>> missing;
    String version;
    std::optional<std::vector<String>> componentTypes;
    /// Why a process of this runtime would not take it; empty when it would.
    String problem;
};

String FindEntry(const Contract::ReadBytes& read)
{
    const std::vector<String> exported = ReadExportedNames(read);
    for (const char* name : {SharedLibraryLoader::dlMainEntryName, SharedLibraryLoader::dlMainEntryNameObsolete})
    {
        if (std::ranges::find(exported, name) != exported.end())
        {
            return name;
        }
    }
    return {};
}

/// What shows when the library is loaded, which a helper process does.
void Probe(Report& report)
{
    const LibraryFacts facts = ProbeLibrary(report.path, {}, ProbeDepth::Types);
    report.version = facts.version;
    report.componentTypes = facts.componentTypes;
    report.problem = facts.failure;
    if (facts.failure.empty() && !facts.hasEntry)
    {
        report.problem = "It has no entry function and so no components.";
    }
}

Report Examine(const String& path)
{
    if (::access(path.c_str(), R_OK) != 0)
    {
        const int error = errno;
        throw CommandError(error == EACCES ? ExitCode::Refused : ExitCode::NotFound, "'{}' cannot be read: {}", path,
                           System::Commons::GetErrorText(error));
    }
    const auto read = Contract::ReadFrom(path);
    const auto architecture = Contract::Architecture::Read(read);
    if (!architecture)
    {
        throw CommandError(ExitCode::Negative, "'{}' is not a shared object.", path);
    }
    Report report;
    report.path = path;
    report.architecture = *architecture;
    report.entry = FindEntry(read);
    try
    {
        const auto section = Contract::DynamicSection::Read(read).value_or(Contract::DynamicSection());
        report.needed = section.needed;
        report.note = Contract::LibraryNote::Read(path, read);
        Contract::Architecture::RequireOwn(path, read);
        report.missing = FindMissingLibraries(path, section.runPath, section.needed);
        Probe(report);
    }
    catch (const InvalidOperationException& exception)
    {
        report.problem = exception.GetMessage();
    }
    return report;
}

Json ToJson(const Report& report)
{
    Json json{{"path", report.path},
              {"architecture", report.architecture.ToString()},
              {"entry", report.entry},
              {"needed", report.needed},
              {"usable", report.problem.empty()}};
    if (report.missing)
    {
        json["missing"] = *report.missing;
    }
    if (report.note)
    {
        json["note"] = {{"contract", report.note->contractVersion},
                        {"layout", fmt::format("{:016x}", report.note->layoutHash)},
                        {"sdk", report.note->sdkVersion},
                        {"compiler", report.note->compiler}};
    }
    if (!report.version.empty())
    {
        json["version"] = report.version;
    }
    if (report.componentTypes)
    {
        json["componentTypes"] = *report.componentTypes;
    }
    if (!report.problem.empty())
    {
        json["problem"] = report.problem;
    }
    return json;
}

/// What stands in the file.
void AddContents(const Report& report, Table& table)
{
    namespace BinaryContract = System::Kiro::BinaryContract;
    if (report.note)
    {
        const auto judge = [](bool isRight)
        {
            return isRight ? Style::Plain : Style::Bad;
        };
        table.AddRow({"contract",
                      {fmt::format("{}", report.note->contractVersion),
                       judge(report.note->contractVersion == BinaryContract::contractVersion)}});
        table.AddRow({"interface layout",
                      {fmt::format("{:016x}", report.note->layoutHash),
                       judge(report.note->layoutHash == BinaryContract::layoutHash)}});
        table.AddRow({"SDK", report.note->sdkVersion});
        table.AddRow({"compiler", report.note->compiler});
    }
    else
    {
        table.AddRow({"contract", "no note"});
    }
    table.AddRow({"entry function", report.entry.empty() ? "none" : report.entry});
    for (const String& name : report.needed)
    {
        const bool isMissing = report.missing && report.missing->contains(name);
        table.AddRow({"needs", {isMissing ? name + " (missing)" : name, isMissing ? Style::Bad : Style::Plain}});
    }
}

Table ToTable(const Report& report)
{
    Table table({{"LIBRARY"}, {report.path}});
    table.AddRow({"architecture", report.architecture.ToString()});
    if (report.architecture.HasOwnByteOrder())
    {
        AddContents(report, table);
    }
    if (!report.version.empty())
    {
        table.AddRow({"version", report.version});
    }
    for (const String& type : report.componentTypes.value_or(std::vector<String>()))
    {
        table.AddRow({"component type", type});
    }
    if (!report.problem.empty())
    {
        table.AddRow({"problem", {report.problem, Style::Bad}});
    }
    if (report.architecture != Contract::Architecture::GetOwn())
    {
        table.AddRow(
            {"not known", "version, component types and missing shared objects: they show where it can be loaded"});
    }
    return table;
}

class Inspect final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("LIBRARY", path, "The shared object", {.isRequired = true});
    }

    ExitCode Run(Session& session) override
    {
        const Report report = Examine(path);
        Output& output = session.GetOutput();
        if (output.IsJson())
        {
            output.WriteJson(ToJson(report));
        }
        else
        {
            output.WriteTable(ToTable(report));
        }
        return report.problem.empty() ? ExitCode::Success : ExitCode::Negative;
    }

private:
    String path;
};

} // namespace

std::unique_ptr<Command> CreateInspect()
{
    return std::make_unique<Inspect>();
}

} // namespace Vela::Kiroctl
