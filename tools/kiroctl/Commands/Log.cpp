#include "../Client/Format.hpp"
#include "../Client/LogLevels.hpp"
#include "../Client/ProcessAnswers.hpp"
#include "../Command.hpp"

#include <Vela/System/Commons/PlainText.hpp>

#include <algorithm>
#include <chrono>
#include <thread>

namespace Vela::Kiroctl
{

namespace
{

/// How often a followed process is asked.
constexpr std::chrono::milliseconds pause{200};
constexpr std::uint32_t pageSize = 500;

/// The log of one process, read from number to number.
struct Source
{
    String process;
    std::shared_ptr<Services::IDiagnosticsService> service;
    std::uint64_t last = 0;
};

struct Line
{
    String process;
    Services::LogLine line;
};

class Log final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("--process", process, "Only of a process", {.name = "NAME"});
        command.AddText("--level", level, "Only messages of at most this level", {.name = "LEVEL"});
        command.AddText("--category", category, "Only of a category and those below it", {.name = "CATEGORY"});
        command.AddNumber("-n,--lines", count, {0, 100'000}, "How many of the last messages");
        command.AddFlag("-f,--follow", isFollowing, "Go on with what is logged from now on, until the system ends");
        command.SetFooter("A process keeps its last messages, up to 32 KiB of them.");
    }

    ExitCode Run(Session& session) override
    {
        maximumLevel = level.empty() ? LogLevel::Trace : ParseLogLevel(level);
        const RunningSystem system(session);
        std::vector<Source> sources;
        std::vector<Line> lines;
        const auto diagnostics = system.GetDiagnostics();
        const auto silentProcesses = AskProcesses(system, system.SelectProcesses(process),
                                                  [&](const String& name, const auto& service)
                                                  {
                                                      Source source{name, service};
                                                      Read(source, lines);
                                                      sources.push_back(std::move(source));
                                                  });
        Output& output = session.GetOutput();
        SortByTime(lines);
        if (lines.size() > static_cast<std::size_t>(count))
        {
            lines.erase(lines.begin(), lines.end() - count);
        }
        if (output.IsJson() && !isFollowing)
        {
            Json json = Json::array();
            for (const Line& line : lines)
            {
                json.push_back(ToJson(line));
            }
            output.WriteJson(json);
        }
        else
        {
            Write(output, lines);
        }
        if (isFollowing)
        {
            TellSilence(silentProcesses);
            Follow(output, *diagnostics, std::move(sources));
        }
        else
        {
            RequireAnswers("messages", silentProcesses);
        }
        return ExitCode::Success;
    }

private:
    /// Goes on as long as the main process answers, which outlives the others, and longest when one of them dies.
    void Follow(Output& output, Services::ISystemDiagnosticsService& diagnostics, std::vector<Source> sources) const
    {
        for (bool isThere = true; isThere;)
        {
            std::this_thread::sleep_for(pause);
            std::vector<Line> lines;
            std::vector<String> silentProcesses;
            std::erase_if(sources,
                          [&](Source& source)
                          {
                              const bool isSilent = !TryAsk([&] { Read(source, lines); });
                              if (isSilent)
                              {
                                  silentProcesses.push_back(source.process);
                              }
                              return isSilent;
                          });
            SortByTime(lines);
            Write(output, lines);
            String state;
            isThere = TryAsk([&] { state = diagnostics.GetStatus().state; });
            // The end of what is followed is no failure.
            if (isThere && state != "stopping" && state != "failed")
            {
                TellSilence(silentProcesses);
            }
        }
    }

    static void TellSilence(const std::vector<String>& processes)
    {
        for (const String& process : processes)
        {
            TellFailure(fmt::format("Process '{}' does not answer, its further messages are missing.", process));
        }
    }

    /// Adds what has come since the last time.
    void Read(Source& source, std::vector<Line>& lines) const
    {
        auto page = source.service->GetLogLines(source.last, pageSize);
        for (; !page.lines.empty(); page = source.service->GetLogLines(source.last, pageSize))
        {
            source.last = page.lines.back().number;
            for (auto& line : page.lines)
            {
                if (Fits(line))
                {
                    lines.push_back({source.process, std::move(line)});
                }
            }
        }
    }

    static void SortByTime(std::vector<Line>& lines)
    {
        std::stable_sort(lines.begin(), lines.end(),
                         [](const Line& left, const Line& right) { return left.line.time < right.line.time; });
    }

    [[nodiscard]] bool Fits(const Services::LogLine& line) const
    {
        return line.level <= maximumLevel &&
               (category.empty() || line.category == category || line.category.starts_with(category + "."));
    }

    static Json ToJson(const Line& line)
    {
        return Json{
            {"time", FormatTime(line.line.time)}, {"process", line.process}, {"level", GetLevelName(line.line.level)},
            {"category", line.line.category},     {"text", line.line.text},  {"number", line.line.number}};
    }

    static void Write(Output& output, const std::vector<Line>& lines)
    {
        for (const Line& line : lines)
        {
            if (output.IsJson())
            {
                output.WriteJsonLine(ToJson(line));
                continue;
            }
            const LogLevel lineLevel = line.line.level;
            const Style style = lineLevel <= LogLevel::Error     ? Style::Bad
                                : lineLevel == LogLevel::Warning ? Style::Warning
                                                                 : Style::Plain;
            output.WriteLine(fmt::format("{} {} {} {}: {}", output.Paint(FormatTime(line.line.time), Style::Faint),
                                         line.process,
                                         output.Paint(fmt::format("{:<7}", GetLevelName(lineLevel)), style),
                                         line.line.category, System::Commons::MakePlainText(line.line.text)));
        }
        output.Flush();
    }

    std::string process;
    std::string level;
    std::string category;
    int count = 50;
    bool isFollowing = false;
    LogLevel maximumLevel = LogLevel::Trace;
};

} // namespace

std::unique_ptr<Command> CreateLog()
{
    return std::make_unique<Log>();
}

} // namespace Vela::Kiroctl
