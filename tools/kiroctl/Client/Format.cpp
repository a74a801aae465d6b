#include "Format.hpp"

#include <Vela/System/Commons/Chrono/DateTime.hpp>

#include <fmt/format.h>

#include <limits>

namespace Vela::Kiroctl
{

using namespace System::Kiro::Services::Internal;

std::string FormatDuration(std::int64_t microseconds)
{
    const std::int64_t seconds = microseconds / 1'000'000;
    if (microseconds < 1000)
    {
        return fmt::format("{} us", microseconds);
    }
    if (seconds < 1)
    {
        return fmt::format("{:.1f} ms", static_cast<double>(microseconds) / 1e3);
    }
    if (seconds < 60)
    {
        return fmt::format("{:.2f} s", static_cast<double>(microseconds) / 1e6);
    }
    if (seconds < 3600)
    {
        return fmt::format("{} min {} s", seconds / 60, seconds % 60);
    }
    if (seconds < 86'400)
    {
        return fmt::format("{} h {} min", seconds / 3600, seconds / 60 % 60);
    }
    return fmt::format("{} d {} h", seconds / 86'400, seconds / 3600 % 24);
}

std::string FormatBytes(std::uint64_t bytes)
{
    if (bytes == 0)
    {
        return "-";
    }
    return bytes < 1'000'000 ? fmt::format("{} kB", bytes / 1000)
                             : fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6);
}

std::string FormatTime(std::int64_t microsecondsSinceEpoch)
{
    return System::Commons::Chrono::DateTime(microsecondsSinceEpoch).ToString();
}

Style GetStateStyle(std::string_view state)
{
    if (state == "running" || state == "connected" || state == "configured-up")
    {
        return Style::Good;
    }
    if (state == "failed" || state == "removed" || state == "ended")
    {
        return Style::Bad;
    }
    return state == "busy" || state == "starting" || state == "stopping" ? Style::Warning : Style::Plain;
}

Json ToJson(const FailureReport& failure)
{
    if (failure.time == 0)
    {
        return nullptr;
    }
    return Json{
        {"time", FormatTime(failure.time)}, {"phase", failure.phase}, {"step", failure.step}, {"text", failure.text}};
}

Json ToJson(const TimedStep& step)
{
    return Json{{"phase", step.phase},     {"step", step.step},   {"subject", step.subject}, {"name", step.name},
                {"process", step.process}, {"begin", step.begin}, {"end", step.end},         {"outcome", step.outcome}};
}

Json ToJson(const ProcessStatus& process)
{
    Json json{{"name", process.name}, {"state", process.state}, {"isMain", process.isMain}};
    if (process.processId != 0)
    {
        json["pid"] = process.processId;
        json["residentBytes"] = process.resources.residentBytes;
        json["proportionalBytes"] = process.resources.proportionalBytes;
        json["userTime"] = process.resources.userTime;
        json["systemTime"] = process.resources.systemTime;
        json["threads"] = process.resources.threads;
    }
    if (process.startTime != 0)
    {
        json["startTime"] = FormatTime(process.startTime);
    }
    return json;
}

Json ToJson(const ComponentStatus& component)
{
    Json json{{"name", component.name},
              {"state", component.state},
              {"process", component.process},
              {"type", component.type},
              {"library", component.library},
              {"startOrder", nullptr},
              {"isRequired", component.isRequired},
              {"isEnabled", component.isEnabled},
              {"isController", component.isController},
              {"settings", component.settingsPath},
              {"position", component.position},
              {"phase", component.phase},
              {"step", component.step},
              {"since", nullptr},
              {"failure", ToJson(component.failure)}};
    if (component.startOrder != std::numeric_limits<std::uint32_t>::max())
    {
        json["startOrder"] = component.startOrder;
    }
    if (component.since != 0)
    {
        json["since"] = FormatTime(component.since);
    }
    return json;
}

std::string Describe(const TimedStep& step)
{
    if (step.subject == "phase")
    {
        return fmt::format("phase '{}'", step.step);
    }
    if (step.subject == "process")
    {
        return fmt::format("the start of process '{}'", step.name);
    }
    return fmt::format("{} of {} '{}' in process '{}'", step.step, step.subject, step.name, step.process);
}

} // namespace Vela::Kiroctl
