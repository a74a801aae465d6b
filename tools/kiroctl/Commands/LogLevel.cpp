#include "../Client/LogLevels.hpp"
#include "../Client/ProcessAnswers.hpp"
#include "../Command.hpp"

#include <map>

namespace Vela::Kiroctl
{

namespace
{

class SetLogLevel final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("CATEGORY", category, "Category and all below it; '*' means all");
        command.AddText("LEVEL", level, "Off, Fatal, Error, Warning, Info, Debug or Trace");
        command.AddText("--process", process, "Only in this process", {.name = "NAME"});
        command.SetFooter("Without a level the levels that are set are shown.");
    }

    ExitCode Run(Session& session) override
    {
        const RunningSystem system(session);
        const std::string prefix = category == "*" ? "" : category;
        const bool isChange = !level.empty();
        const LogLevel newLevel = isChange ? ParseLogLevel(level) : LogLevel::None;
        Json json = Json::array();
        Table table({{"PROCESS"}, {"CATEGORY"}, {"LEVEL"}});
        const auto processes = system.SelectProcesses(process);
        std::map<String, std::vector<Services::LogCategoryLevel>> levels;
        const auto silentProcesses = AskProcesses(system, processes,
                                                  [&](const String& name, const auto& service)
                                                  {
                                                      if (isChange)
                                                      {
                                                          service->SetLogLevel(prefix, newLevel);
                                                      }
                                                      levels[name] = service->GetLogLevels();
                                                  });
        for (const String& name : processes)
        {
            for (const auto& set : levels[name])
            {
                const std::string shown = set.category.empty() ? "*" : set.category;
                if (category.empty() || shown == category)
                {
                    json.push_back(Json{{"process", name}, {"category", shown}, {"level", GetLevelName(set.level)}});
                    table.AddRow({name, shown, GetLevelName(set.level)});
                }
            }
        }
        Output& output = session.GetOutput();
        output.IsJson() ? output.WriteJson(json) : output.WriteTable(table);
        RequireAnswers("levels", silentProcesses);
        return ExitCode::Success;
    }

private:
    std::string category;
    std::string level;
    std::string process;
};

} // namespace

std::unique_ptr<Command> CreateLogLevel()
{
    return std::make_unique<SetLogLevel>();
}

} // namespace Vela::Kiroctl
