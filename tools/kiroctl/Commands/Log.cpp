#include "../Client/Format.hpp"
#include "../Client/LogLevels.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <Vela/Exceptions.hpp>
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
    const String* process;
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
        for (const String& name : system.SelectProcesses(process))
        {
            sources.push_back({name, system.GetProcess(name)});
        }
        Output& output = session.GetOutput();
        auto lines = Read(sources);
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
            return ExitCode::Success;
        }
        Write(output, lines);
        while (isFollowing)
        {
            std::this_thread::sleep_for(pause);
            try
            {
                Write(output, Read(sources));
            }
            catch (const Exception&)
            {
                // The end of what is followed is no failure.
                break;
            }
        }
        return ExitCode::Success;
    }

private:
    /// What has come since the last time, of all processes by time.
    [[nodiscard]] std::vector<Line> Read(std::vector<Source>& sources) const
    {
        std::vector<Line> lines;
        for (Source& source : sources)
        {
            auto page = source.service->GetLogLines(source.last, pageSize);
            for (; !page.lines.empty(); page = source.service->GetLogLines(source.last, pageSize))
            {
                source.last = page.lines.back().number;
                for (auto& line : page.lines)
                {
                    if (Fits(line))
                    {
                        lines.push_back({&source.process, std::move(line)});
                    }
                }
            }
        }
        std::stable_sort(lines.begin(), lines.end(),
                         [](const Line& left, const Line& right) { return left.line.time < right.line.time; });
        return lines;
    }

    [[nodiscard]] bool Fits(const Services::LogLine& line) const
    {
        return line.level <= maximumLevel &&
               (category.empty() || line.category == category || line.category.starts_with(category + "."));
    }

    static Json ToJson(const Line& line)
    {
        return Json{
            {"time", FormatTime(line.line.time)}, {"process", *line.process}, {"level", GetLevelName(line.line.level)},
            {"category", line.line.category},     {"text", line.line.text},   {"number", line.line.number}};
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
                                         *line.process,
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
