#include "Plot.hpp"

#include "../Client/Format.hpp"
#include "../Graph/SvgPage.hpp"

#include <fmt/format.h>

#include <algorithm>
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
/// With two rows of the legend.
constexpr double headHeight = 102;
constexpr double rowHeight = 18;
constexpr double barHeight = 12;
constexpr double laneGap = 10;
constexpr double legendTop = 58;
constexpr double textSize = 11;
constexpr double smallSize = 10;

constexpr const char* ink = "#222222";
constexpr const char* faintInk = "#666666";
constexpr const char* failure = "#c00000";

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

class Drawing
{
public:
    explicit Drawing(const Timeline& drawnTimeline)
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
            height += GetHeight(lane) + laneGap;
        }
        height += rowHeight + margin;
    }

    std::string Draw()
    {
        const std::string title =
            fmt::format("System '{}': {}", timeline.system, FormatDuration((last - first) / 1000));
        page.AddText(margin, 26, title, 17, ink, true);
        page.AddText(margin, 44,
                     fmt::format("from {}{}", FormatTime(timeline.origin + first / 1000),
                                 timeline.dropped == 0
                                     ? ""
                                     : fmt::format("; {} later steps are not recorded", timeline.dropped)),
                     textSize, faintInk);
        DrawPhases();
        DrawAxis();
        double y = headHeight + laneGap;
        for (const auto& [process, lane] : lanes)
        {
            DrawLane(process, lane, y);
            y += GetHeight(lane) + laneGap;
        }
        return page.Finish(pageWidth, height, title);
    }

private:
    static double GetHeight(const Lane& lane)
    {
        return rowHeight * static_cast<double>(1 + lane.components.size());
    }

    [[nodiscard]] double GetX(std::int64_t time) const
    {
        return chartLeft + chartWidth * static_cast<double>(time - first) / static_cast<double>(last - first);
    }

    /// Bands behind everything, a legend above them.
    void DrawPhases()
    {
        constexpr double square = 11;
        constexpr double gap = 12;
        double legendX = margin;
        double legendY = legendTop;
        for (const TimedStep& step : timeline.steps)
        {
            if (step.subject != "phase")
            {
                continue;
            }
            const std::string colour(GetColour(step.step));
            const std::string duration = FormatDuration(GetTime(step) / 1000);
            const double x = GetX(step.begin);
            page.AddBox(x, headHeight, GetX(step.end) - x, height - headHeight - rowHeight - margin, 0,
                        {.fill = colour, .opacity = 0.08, .kind = "phase"}, fmt::format("{}: {}", step.step, duration));
            const std::string label = step.step + " " + duration;
            const double width = square + 4 + SvgPage::GetTextWidth(label, textSize);
            if (legendX + width > pageWidth - margin)
            {
                legendX = margin;
                legendY += rowHeight;
            }
            page.AddBox(legendX, legendY, square, square, 0, {.fill = colour});
            page.AddText(legendX + square + 4, legendY + 9.5, label, textSize, ink);
            legendX += width + gap;
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
            page.AddLine(x, headHeight, x, bottom, {.stroke = "#d5d9de", .strokeWidth = 0.6});
            page.AddText(x, bottom + 14, mark == 0 ? "0" : FormatDuration(static_cast<std::int64_t>(time / 1000)),
                         smallSize, faintInk, false,
                         mark == 0                 ? SvgPage::Anchor::Start
                         : total - time < step / 2 ? SvgPage::Anchor::End
                                                   : SvgPage::Anchor::Middle);
        }
    }

    void DrawLane(const std::string& process, const Lane& lane, double y)
    {
        page.AddBox(margin / 2, y, pageWidth - margin, GetHeight(lane), 3,
                    {.stroke = "#b8bfc7", .strokeWidth = 0.8, .kind = "lane"});
        page.AddText(margin, y + 13, SvgPage::Shorten(process, textSize, labelWidth), textSize, ink, true);
        DrawBars(lane.own, y);
        for (const auto& [component, steps] : lane.components)
        {
            y += rowHeight;
            page.AddText(margin + 10, y + 13, SvgPage::Shorten(component, textSize, labelWidth - 20), textSize, ink);
            page.AddLine(GetX(steps.front()->begin), y + rowHeight / 2, GetX(steps.back()->end), y + rowHeight / 2,
                         {.stroke = "#9aa5b1", .isDashed = true, .kind = "wait"});
            DrawBars(steps, y);
        }
    }

    void DrawBars(const std::vector<const TimedStep*>& steps, double y)
    {
        for (const TimedStep* step : steps)
        {
            constexpr double narrowest = 0.8;
            const double x = std::min(GetX(step->begin), chartLeft + chartWidth - narrowest);
            const double width = std::max(narrowest, GetX(step->end) - x);
            const bool hasFailed = step->outcome == "failed";
            const bool isRunning = step->outcome == "running";
            SvgPage::Look look{.fill = std::string(GetColour(step->phase)), .isDashed = isRunning, .kind = "bar"};
            if (hasFailed || isRunning)
            {
                look.stroke = hasFailed ? failure : ink;
                look.strokeWidth = hasFailed ? 2 : 1;
            }
            page.AddBox(x, y + (rowHeight - barHeight) / 2, width, barHeight, 0, look,
                        fmt::format("{}: {}{}", Describe(*step), FormatDuration(GetTime(*step) / 1000),
                                    step->outcome == "done" ? "" : ", " + step->outcome));
            if (hasFailed)
            {
                const bool isAtEnd = x + width + 60 > pageWidth - margin;
                page.AddText(isAtEnd ? x - 5 : x + width + 5, y + 13, "failed", textSize, failure, true,
                             isAtEnd ? SvgPage::Anchor::End : SvgPage::Anchor::Start);
            }
            else if (width > 60)
            {
                page.AddText(x + 4, y + 12.6, SvgPage::Shorten(step->step, smallSize, width - 6), smallSize, "#ffffff");
            }
        }
    }

    const Timeline& timeline;
    std::map<std::string, Lane> lanes;
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    double height = 0;
    SvgPage page;
};

} // namespace

std::string Plot(const Timeline& timeline)
{
    return Drawing(timeline).Draw();
}

} // namespace Vela::Kiroctl
