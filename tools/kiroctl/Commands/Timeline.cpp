#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"
#include "../Timeline/Analysis.hpp"
#include "../Timeline/Plot.hpp"
#include "../Timeline/TimelineFile.hpp"

#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace Vela::Kiroctl
{

namespace
{

using System::Commons::Diagnostics::CrashRecords;

class TimelineCommand final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("--input", input, "Read the timeline from a file in place of a running system",
                        {.name = "FILE"});
        command.AddFlag("--failed", isFailed, "Read that of the last failed start from the runtime directory");
        command.AddFlag("--stop", isStop, "The way down in place of the start");
        command.AddText("--budget", budget, "Tell which limits of this file are broken", {.name = "FILE"});
        plot = command.AddSubcommand("plot", "Draw one SVG page");
        blame = command.AddSubcommand("blame", "List the slowest steps first");
        chain = command.AddSubcommand("critical-chain", "Show what the start had to wait for");
        chromeTrace = command.AddSubcommand("export", "Write a Chrome trace, for any trace viewer");
        blame.AddNumber("-n,--lines", count, {1, 1'000'000}, "How many");
        for (const CommandDeclaration& writer : {plot, chromeTrace})
        {
            writer.AddText("-o,--output", outputFile, "Write to a file in place of standard output", {.name = "FILE"});
        }
        command.SetFooter("Without a subcommand the steps are listed; with --json that is the document for\n--input.\n"
                          "Exit codes of --budget: 1 limits of phases are broken, 7 limits of components,\n8 both.");
    }

    ExitCode Run(Session& session) override
    {
        CheckOptions();
        const Timeline whole = Read(session);
        const Timeline timeline = Select(whole, !isStop);
        Output& output = session.GetOutput();
        if (!budget.empty())
        {
            return CheckLimits(output, timeline);
        }
        if (plot.IsNamed())
        {
            Write(output, Plot(timeline));
        }
        else if (blame.IsNamed())
        {
            auto steps = FindSlowest(timeline);
            steps.resize(std::min(steps.size(), static_cast<std::size_t>(count)));
            List(output, steps);
        }
        else if (chain.IsNamed())
        {
            ShowChain(output, timeline);
        }
        else if (chromeTrace.IsNamed())
        {
            Write(output, ToChromeTrace(timeline).dump(1, ' ', false, Json::error_handler_t::replace) + "\n");
        }
        else if (output.IsJson())
        {
            output.WriteJson(ToDocument(whole));
        }
        else
        {
            List(output, timeline.steps);
        }
        return ExitCode::Success;
    }

private:
    void CheckOptions() const
    {
        if (!input.empty() && isFailed)
        {
            throw CommandError(ExitCode::Usage, "--input and --failed name a timeline each: only one can be read.");
        }
        if (!budget.empty() && (plot.IsNamed() || blame.IsNamed() || chain.IsNamed() || chromeTrace.IsNamed()))
        {
            throw CommandError(ExitCode::Usage, "--budget takes no subcommand.");
        }
    }

    [[nodiscard]] Timeline Read(Session& session) const
    {
        if (!input.empty())
        {
            return ReadTimeline(input);
        }
        if (!isFailed)
        {
            return RunningSystem(session).GetDiagnostics()->GetTimeline();
        }
        const std::filesystem::path directory(System::Rsc::RscManager::FindRuntimeDirectory(false));
        const auto file = directory / CrashRecords::directoryName / CrashRecords::timelineFileName;
        if (!exists(file))
        {
            throw CommandError(ExitCode::NotFound, "No failed start has left its times in '{}'.", directory.string());
        }
        return ReadTimeline(file.string());
    }

    void Write(Output& output, const std::string& text) const
    {
        if (outputFile.empty())
        {
            output.Write(text);
            return;
        }
        std::ofstream file(outputFile, std::ios::binary | std::ios::trunc);
        file << text;
        file.flush();
        if (!file)
        {
            throw CommandError(ExitCode::Failed, "File '{}' could not be written.", outputFile);
        }
    }

    static void List(Output& output, const std::vector<TimedStep>& steps)
    {
        Json json = Json::array();
        Table table(
            {{"TIME", Table::Align::Right}, {"AT", Table::Align::Right}, {"NAME"}, {"PROCESS"}, {"STEP"}, {""}});
        for (const TimedStep& step : steps)
        {
            json.push_back(ToJson(step));
            const bool isDone = step.outcome == "done";
            table.AddRow({FormatDuration(GetTime(step) / 1000),
                          FormatDuration(step.begin / 1000),
                          step.subject == "phase" ? "(phase)" : step.name,
                          step.process,
                          step.step,
                          {isDone ? "" : step.outcome, GetStateStyle(step.outcome)}});
        }
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
    }

    static void ShowChain(Output& output, const Timeline& timeline)
    {
        constexpr double share = 0.01;
        Json json = Json::array();
        Table table({{"TIME", Table::Align::Right}, {"AT", Table::Align::Right}, {"WHAT"}, {"PROCESS"}});
        for (const ChainLink& link : FindCriticalChain(timeline, share))
        {
            const bool isPhase = link.step.subject == "phase";
            Json entry = ToJson(link.step);
            if (isPhase)
            {
                entry["between"] = link.between;
            }
            json.push_back(std::move(entry));
            table.AddRow({FormatDuration(GetTime(link.step) / 1000), FormatDuration(link.step.begin / 1000),
                          isPhase ? fmt::format("{} (runtime {})", link.step.step, FormatDuration(link.between / 1000))
                                  : fmt::format("  {}: {}", link.step.name, link.step.step),
                          link.step.process});
        }
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
    }

    [[nodiscard]] ExitCode CheckLimits(Output& output, const Timeline& timeline) const
    {
        if (timeline.steps.empty())
        {
            throw CommandError(ExitCode::Failed, "There is nothing to judge: the timeline has no step of the {}.",
                               isStop ? "way down" : "start");
        }
        const auto broken = CheckBudget(timeline, ReadJsonFile(budget), budget);
        Json json = Json::array();
        Table table({{"COMPONENT"}, {"PHASE"}, {"LIMIT", Table::Align::Right}, {"TIME", Table::Align::Right}});
        for (const BrokenLimit& limit : broken)
        {
            json.push_back(Json{
                {"component", limit.component}, {"phase", limit.phase}, {"limit", limit.limit}, {"time", limit.time}});
            table.AddRow({limit.component.empty() ? "(all)" : limit.component,
                          limit.phase,
                          FormatDuration(limit.limit / 1000),
                          {FormatDuration(limit.time / 1000), Style::Bad}});
        }
        if (output.IsJson())
        {
            output.WriteJson(json);
        }
        else if (broken.empty())
        {
            output.WriteLine("All limits are held.");
        }
        else
        {
            output.WriteTable(table);
        }
        const auto isOfComponent = [](const BrokenLimit& limit)
        {
            return !limit.component.empty();
        };
        const bool hasComponents = std::any_of(broken.begin(), broken.end(), isOfComponent);
        const bool hasPhases = !std::all_of(broken.begin(), broken.end(), isOfComponent);
        return hasComponents && hasPhases ? ExitCode::BudgetOfBoth
               : hasComponents            ? ExitCode::BudgetOfComponents
               : hasPhases                ? ExitCode::Negative
                                          : ExitCode::Success;
    }

    CommandDeclaration plot;
    CommandDeclaration blame;
    CommandDeclaration chain;
    CommandDeclaration chromeTrace;
    std::string input;
    std::string budget;
    std::string outputFile;
    int count = 20;
    bool isFailed = false;
    bool isStop = false;
};

} // namespace

std::unique_ptr<Command> CreateTimeline()
{
    return std::make_unique<TimelineCommand>();
}

} // namespace Vela::Kiroctl
