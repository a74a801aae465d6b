#include "../Command.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Commons/PlainText.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <algorithm>
#include <string_view>

namespace Vela::Kiroctl
{

namespace
{

using System::Commons::MakePlainText;
using System::Commons::Diagnostics::CrashRecords;

std::string Find(const CrashRecords::Fields& fields, std::string_view name)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [name](const auto& field) { return field.first == name; });
    return found == fields.end() ? std::string() : found->second;
}

/// Lists of lines in any record, also when they have one line only.
bool IsList(std::string_view name)
{
    return name == "stack" || name == "processes" || name.starts_with("log");
}

std::vector<std::string_view> SplitLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty())
    {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// The step that crashed, else how a process of the system ended, else the phase in which the system failed.
std::string DescribePlace(const CrashRecords::Fields& fields)
{
    if (const std::string step = Find(fields, "step"); !step.empty())
    {
        return fmt::format("{} of {}", step, Find(fields, "component") + Find(fields, "library"));
    }
    const std::string processes = Find(fields, "processes");
    for (const std::string_view process : SplitLines(processes))
    {
        if (!process.ends_with(": running"))
        {
            return std::string(process);
        }
    }
    return Find(fields, "phase");
}

Json ToJson(const std::string& name, const CrashRecords::Fields& fields)
{
    Json json{{"record", name}};
    for (const auto& [key, value] : fields)
    {
        if (IsList(key))
        {
            json[key] = SplitLines(value);
        }
        else
        {
            json[key] = value;
        }
    }
    return json;
}

/// Lists what has crashed or failed in a runtime directory, or shows one of the records.
class Crashes final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("RECORD", record, "The record to show as the list names it, or 'last'");
    }

    ExitCode Run(Session& session) override
    {
        const CrashRecords records(FindDirectory());
        std::vector<String> names = records.List();
        std::reverse(names.begin(), names.end());
        if (record.empty())
        {
            List(session.GetOutput(), records, names);
        }
        else if (record == "last" && names.empty())
        {
            throw CommandError(ExitCode::NotFound, "Nothing has crashed.");
        }
        else
        {
            Show(session.GetOutput(), records, record == "last" ? names.front() : record);
        }
        return ExitCode::Success;
    }

private:
    static String FindDirectory()
    {
        try
        {
            return System::Rsc::RscManager::FindRuntimeDirectory(false);
        }
        catch (const Exception& exception)
        {
            throw CommandError(ExitCode::Unreachable, "{}", exception.what());
        }
    }

    static void List(Output& output, const CrashRecords& records, const std::vector<String>& names)
    {
        Json list = Json::array();
        Table table({{"RECORD"}, {"PROCESS"}, {"WHAT"}, {"WHERE"}});
        for (const String& name : names)
        {
            const auto fields = records.Read(name);
            list.push_back(ToJson(name, fields));
            const std::string signal = Find(fields, "signal");
            table.AddRow({name,
                          {Find(fields, "process")},
                          {signal.empty() ? Find(fields, "reason") : signal, Style::Bad},
                          {DescribePlace(fields)}});
        }
        if (output.IsJson())
        {
            output.WriteJson(list);
        }
        else if (table.IsEmpty())
        {
            output.WriteLine("Nothing has crashed.");
        }
        else
        {
            output.WriteTable(table);
        }
    }

    static void Show(Output& output, const CrashRecords& records, const String& name)
    {
        CrashRecords::Fields fields;
        try
        {
            fields = records.Read(name);
        }
        catch (const NotExistException& exception)
        {
            throw CommandError(ExitCode::NotFound, "{}", exception.what());
        }
        if (output.IsJson())
        {
            output.WriteJson(ToJson(name, fields));
            return;
        }
        for (const auto& [key, value] : fields)
        {
            const bool isLong = IsList(key) || value.find('\n') != String::npos;
            output.WriteLine(fmt::format("{}:{}", MakePlainText(key), isLong ? "" : " " + MakePlainText(value)));
            for (const std::string_view line : isLong ? SplitLines(value) : std::vector<std::string_view>())
            {
                output.WriteLine("  " + MakePlainText(line));
            }
        }
    }

    String record;
};

} // namespace

std::unique_ptr<Command> CreateCrashes()
{
    return std::make_unique<Crashes>();
}

} // namespace Vela::Kiroctl
