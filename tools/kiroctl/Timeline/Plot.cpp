#include "Plot.hpp"

#include "../Client/Format.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>

namespace Vela::Kiroctl
{

namespace
{

constexpr double pageWidth = 1200;
constexpr double margin = 16;
constexpr double labelWidth = 220;
constexpr double chartLeft = margin + labelWidth;
constexpr double chartWidth = pageWidth - chartLeft - margin;
constexpr double headHeight = 92;
constexpr double rowHeight = 18;
constexpr double barHeight = 12;
constexpr double laneGap = 10;
/// What a letter takes, about.
constexpr double letterWidth = 6.2;

struct PhaseColour
{
    std::string_view phase;
    std::string_view colour;
};

constexpr PhaseColour colours[] = {
    {"load-config", "#9aa5b1"},    {"start-processes", "#5b7fa6"},
    {"load-libraries", "#7a6fae"}, {"create", "#b07aa1"},
    {"settings", "#f0a202"},       {"config", "#e4572e"},
    {"start", "#2e8b57"},          {"stop", "#2e8b57"},
    {"reset-config", "#e4572e"},   {"dispose", "#f0a202"},
    {"destroy", "#b07aa1"},        {"stop-processes", "#5b7fa6"},
    {"power-down", "#444444"},
};

std::string_view GetColour(std::string_view phase)
{
    const auto found = std::find_if(std::begin(colours), std::end(colours),
                                    [&](const PhaseColour& entry) { return entry.phase == phase; });
    return found == std::end(colours) ? "#666666" : found->colour;
}

std::string Escape(std::string_view text)
{
    std::string escaped;
    for (const char character : text)
    {
        switch (character)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            // XML has no way to write most control characters.
            escaped += static_cast<unsigned char>(character) < 0x20 ? ' ' : character;
        }
    }
    return escaped;
}

std::string Shorten(const std::string& text, double width)
{
    const auto letters = static_cast<std::size_t>(width / letterWidth);
    return text.size() <= letters ? text : text.substr(0, letters > 3 ? letters - 3 : 0) + "...";
}

/// The rows of one process: its own first, then its components by the begin of their first step.
struct Lane
{
    std::vector<const TimedStep*> own;
    std::vector<std::pair<std::string, std::vector<const TimedStep*>>> components;
};

std::map<std::string, Lane> MakeLanes(const Timeline& timeline)
{
    std::map<std::string, Lane> lanes;
    for (const TimedStep& step : timeline.steps)
    {
        if (step.subject == "phase")
        {
            continue;
        }
        Lane& lane = lanes[step.process];
        if (step.subject != "component")
        {
            lane.own.push_back(&step);
            continue;
        }
        const auto found = std::find_if(lane.components.begin(), lane.components.end(),
                                        [&](const auto& row) { return row.first == step.name; });
        if (found == lane.components.end())
        {
            lane.components.push_back({step.name, {&step}});
        }
        else
        {
            found->second.push_back(&step);
        }
    }
    return lanes;
}

class Page
{
public:
    explicit Page(const Timeline& drawnTimeline)
        : timeline(drawnTimeline)
        , lanes(MakeLanes(drawnTimeline))
    {
        for (const TimedStep& step : timeline.steps)
        {
            first = std::min(first, step.begin);
            last = std::max(last, step.end);
        }
        if (timeline.steps.empty())
        {
            first = 0;
            last = 0;
        }
        last = std::max(last, first + 1);
        height = headHeight + laneGap;
        for (const auto& [process, lane] : lanes)
        {
            height += rowHeight * static_cast<double>(1 + lane.components.size()) + laneGap;
        }
        height += rowHeight + margin;
    }

    std::string Draw()
    {
        Add(R"(<svg xmlns="http://www.w3.org/2000/svg" width="{0:.0f}" height="{1:.0f}" viewBox="0 0 {0:.0f} {1:.0f}" font-family="Helvetica, Arial, sans-serif" font-size="11">)",
            pageWidth, height);
        Add(R"(<rect class="page" width="{:.0f}" height="{:.0f}" fill="#ffffff"/>)", pageWidth, height);
        Add(R"(<text x="{}" y="26" font-size="17" font-weight="bold" fill="#222222">System '{}': {}</text>)", margin,
            Escape(timeline.system), FormatDuration((last - first) / 1000));
        Add(R"(<text x="{}" y="44" fill="#666666">from {}{}</text>)", margin,
            FormatTime(timeline.origin + first / 1000),
            timeline.dropped == 0 ? "" : fmt::format("; {} later steps are not recorded", timeline.dropped));
        DrawPhases();
        DrawAxis();
        double y = headHeight + laneGap;
        for (const auto& [process, lane] : lanes)
        {
            DrawLane(process, lane, y);
            y += rowHeight * static_cast<double>(1 + lane.components.size()) + laneGap;
        }
        text += "</svg>\n";
        return text;
    }

private:
    template <typename... Args>
    void Add(fmt::format_string<Args...> format, Args&&... args)
    {
        fmt::format_to(std::back_inserter(text), format, std::forward<Args>(args)...);
        text += '\n';
    }

    [[nodiscard]] double GetX(std::int64_t time) const
    {
        return chartLeft + chartWidth * static_cast<double>(time - first) / static_cast<double>(last - first);
    }

    /// Bands behind everything, a legend above them.
    void DrawPhases()
    {
        double legend = margin;
        for (const TimedStep& step : timeline.steps)
        {
            if (step.subject != "phase")
            {
                continue;
            }
            const double x = GetX(step.begin);
            const double width = GetX(step.end) - x;
            Add(R"(<rect class="phase" x="{:.2f}" y="{:.1f}" width="{:.2f}" height="{:.1f}" fill="{}" fill-opacity="0.08"><title>{}: {}</title></rect>)",
                x, headHeight, width, height - headHeight - rowHeight - margin, GetColour(step.step), Escape(step.step),
                FormatDuration(GetTime(step) / 1000));
            const std::string label = fmt::format("{} {}", step.step, FormatDuration(GetTime(step) / 1000));
            Add(R"(<rect x="{:.1f}" y="58" width="11" height="11" fill="{}"/><text x="{:.1f}" y="67.5" fill="#333333">{}</text>)",
                legend, GetColour(step.step), legend + 15, Escape(label));
            legend += 15 + letterWidth * static_cast<double>(label.size()) + 12;
        }
    }

    void DrawAxis()
    {
        const double total = static_cast<double>(last - first);
        double step = 1;
        for (int i = 0; total / step > 12; ++i)
        {
            step *= i % 3 == 1 ? 2.5 : 2;
        }
        const double bottom = height - rowHeight - margin;
        const int marks = static_cast<int>(total / step);
        for (int mark = 0; mark <= marks; ++mark)
        {
            const double time = step * mark;
            const double x = chartLeft + chartWidth * time / total;
            Add(R"(<line x1="{0:.2f}" y1="{1}" x2="{0:.2f}" y2="{2:.1f}" stroke="#d5d9de" stroke-width="0.6"/>)", x,
                headHeight, bottom);
            Add(R"(<text x="{:.2f}" y="{:.1f}" text-anchor="{}" fill="#666666" font-size="10">{}</text>)", x,
                bottom + 14,
                time == 0                 ? "start"
                : total - time < step / 2 ? "end"
                                          : "middle",
                time == 0 ? "0" : FormatDuration(static_cast<std::int64_t>(time / 1000)));
        }
    }

    void DrawLane(const std::string& process, const Lane& lane, double y)
    {
        const double laneHeight = rowHeight * static_cast<double>(1 + lane.components.size());
        Add(R"(<rect class="lane" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{:.1f}" fill="none" stroke="#b8bfc7" stroke-width="0.8" rx="3"/>)",
            margin / 2, y, pageWidth - margin, laneHeight);
        Add(R"(<text x="{}" y="{:.1f}" font-weight="bold" fill="#222222">{}</text>)", margin, y + 13,
            Escape(Shorten(process, labelWidth)));
        DrawBars(lane.own, y);
        for (const auto& [component, steps] : lane.components)
        {
            y += rowHeight;
            Add(R"(<text x="{}" y="{:.1f}" fill="#333333">{}</text>)", margin + 10, y + 13,
                Escape(Shorten(component, labelWidth - 10)));
            Add(R"(<line class="wait" x1="{:.2f}" y1="{:.1f}" x2="{:.2f}" y2="{:.1f}" stroke="#9aa5b1" stroke-width="1" stroke-dasharray="2 2"/>)",
                GetX(steps.front()->begin), y + rowHeight / 2, GetX(steps.back()->end), y + rowHeight / 2);
            DrawBars(steps, y);
        }
    }

    void DrawBars(const std::vector<const TimedStep*>& steps, double y)
    {
        for (const TimedStep* step : steps)
        {
            const double x = std::min(GetX(step->begin), chartLeft + chartWidth - 0.8);
            const double width = std::max(0.8, GetX(step->end) - x);
            const bool hasFailed = step->outcome == "failed";
            const bool isRunning = step->outcome == "running";
            Add(R"(<rect class="bar" x="{:.2f}" y="{:.1f}" width="{:.2f}" height="{}" fill="{}"{}><title>{}: {}{}</title></rect>)",
                x, y + (rowHeight - barHeight) / 2, width, barHeight, GetColour(step->phase),
                hasFailed   ? R"( stroke="#c00000" stroke-width="2")"
                : isRunning ? R"( stroke="#222222" stroke-width="1" stroke-dasharray="3 2")"
                            : "",
                Escape(Describe(*step)), FormatDuration(GetTime(*step) / 1000),
                hasFailed   ? ", failed"
                : isRunning ? ", running"
                            : "");
            if (hasFailed)
            {
                const bool isAtEnd = x + width + 60 > pageWidth - margin;
                Add(R"(<text x="{:.2f}" y="{:.1f}" text-anchor="{}" fill="#c00000" font-weight="bold">failed</text>)",
                    isAtEnd ? x - 5 : x + width + 5, y + 13, isAtEnd ? "end" : "start");
            }
            else if (const std::string label = Shorten(step->step, width - 6); width > 60)
            {
                Add(R"(<text x="{:.2f}" y="{:.1f}" fill="#ffffff" font-size="10">{}</text>)", x + 4, y + 12.6,
                    Escape(label));
            }
        }
    }

    const Timeline& timeline;
    std::map<std::string, Lane> lanes;
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    double height = 0;
    std::string text;
};

} // namespace

std::string Plot(const Timeline& timeline)
{
    return Page(timeline).Draw();
}

} // namespace Vela::Kiroctl
