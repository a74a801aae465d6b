#include "TimelineFile.hpp"

#include "../Client/Format.hpp"
#include "../CommandError.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Vela::Kiroctl
{

Json ToDocument(const Timeline& timeline)
{
    Json document{{"system", timeline.system},
                  {"origin", timeline.origin},
                  {"dropped", timeline.dropped},
                  {"steps", Json::array()}};
    for (const auto& step : timeline.steps)
    {
        document["steps"].push_back(ToJson(step));
    }
    return document;
}

Json ReadJsonFile(const std::string& path)
{
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::not_found)
    {
        throw CommandError(ExitCode::NotFound, "File '{}' does not exist.", path);
    }
    if (type == std::filesystem::file_type::directory)
    {
        throw CommandError(ExitCode::Usage, "'{}' is a directory.", path);
    }
    std::ifstream file(path);
    if (!file)
    {
        throw CommandError(ExitCode::Refused, "File '{}' cannot be read.", path);
    }
    try
    {
        return Json::parse(file);
    }
    catch (const nlohmann::json::exception& exception)
    {
        throw CommandError(ExitCode::Usage, "File '{}': {}", path, exception.what());
    }
}

Timeline ReadTimeline(const std::string& path)
{
    const Json document = ReadJsonFile(path);
    try
    {
        Timeline timeline;
        timeline.system = document.at("system").get<std::string>();
        timeline.origin = document.at("origin").get<std::int64_t>();
        timeline.dropped = document.at("dropped").get<std::uint64_t>();
        for (const Json& step : document.at("steps"))
        {
            const auto text = [&step](const char* member)
            {
                return step.at(member).get<std::string>();
            };
            timeline.steps.push_back({.phase = text("phase"),
                                      .step = text("step"),
                                      .subject = text("subject"),
                                      .name = text("name"),
                                      .process = text("process"),
                                      .begin = step.at("begin").get<std::int64_t>(),
                                      .end = step.at("end").get<std::int64_t>(),
                                      .outcome = text("outcome")});
        }
        return timeline;
    }
    catch (const nlohmann::json::exception& exception)
    {
        throw CommandError(ExitCode::Usage, "File '{}' holds no timeline: {}", path, exception.what());
    }
}

bool IsStartPhase(std::string_view phase)
{
    static constexpr std::string_view phases[] = {"load-config", "start-processes", "load-libraries", "create",
                                                  "settings",    "config",          "start"};
    return std::find(std::begin(phases), std::end(phases), phase) != std::end(phases);
}

Timeline Select(const Timeline& timeline, bool isStart)
{
    Timeline selected = timeline;
    selected.steps.clear();
    std::copy_if(timeline.steps.begin(), timeline.steps.end(), std::back_inserter(selected.steps),
                 [&](const TimedStep& step) { return !step.phase.empty() && IsStartPhase(step.phase) == isStart; });
    return selected;
}

} // namespace Vela::Kiroctl
