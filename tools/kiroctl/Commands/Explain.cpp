#include "../Client/ComponentStates.hpp"
#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <Vela/System/Commons/PlainText.hpp>

#include <algorithm>

namespace Vela::Kiroctl
{

namespace
{

using System::Commons::MakePlainText;

class Explain final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("COMPONENT", name, "Name of the component", {.isRequired = true});
    }

    ExitCode Run(Session& session) override
    {
        const auto diagnostics = RunningSystem(session).GetDiagnostics();
        const auto status = diagnostics->GetStatus();
        const auto components = diagnostics->GetComponents();
        const auto found = std::find_if(components.begin(), components.end(),
                                        [this](const auto& component) { return component.name == name; });
        if (found == components.end())
        {
            return ReportUnknown(session.GetOutput(), components);
        }
        Output& output = session.GetOutput();
        const auto waits = FindWaits(status, *found);
        const std::string advice = Advise(status, *found, waits);
        if (output.IsJson())
        {
            Json json = ToJson(*found);
            json["system"] = status.state;
            json["waitsFor"] = Json::array();
            for (const auto& step : waits)
            {
                json["waitsFor"].push_back(ToJson(step));
            }
            json["next"] = advice;
            output.WriteJson(json);
        }
        else
        {
            Write(output, status, *found, waits, advice);
        }
        return found->failure.time == 0 ? ExitCode::Success : ExitCode::Negative;
    }

private:
    ExitCode ReportUnknown(Output& output, const std::vector<Services::ComponentStatus>& components) const
    {
        const std::vector<String> known = RunningSystem::ListComponents(components);
        if (output.IsJson())
        {
            output.WriteJson(Json{{"name", name}, {"nearest", FindNearest(name, known)}});
        }
        ThrowUnknown("component", name, known);
    }

    /// What runs now and is not the component's own: the walk takes one component after the other.
    [[nodiscard]] std::vector<Services::TimedStep> FindWaits(const Services::SystemStatus& status,
                                                             const Services::ComponentStatus& component) const
    {
        std::vector<Services::TimedStep> waits;
        std::copy_if(status.running.begin(), status.running.end(), std::back_inserter(waits),
                     [&](const Services::TimedStep& step)
                     { return step.subject != "phase" && component.state != "busy" && component.state != "external"; });
        return waits;
    }

    [[nodiscard]] static std::string Advise(const Services::SystemStatus& status,
                                            const Services::ComponentStatus& component,
                                            const std::vector<Services::TimedStep>& waits)
    {
        if (component.failure.time != 0 || component.state == "busy")
        {
            return "kiroctl log --process " + component.process;
        }
        if (!waits.empty() && waits.front().subject == "component")
        {
            return "kiroctl explain " + waits.front().name;
        }
        if (status.failure.time != 0)
        {
            return "kiroctl status";
        }
        return component.state == "running" ? "kiroctl timeline blame"
                                            : "kiroctl components --process " + component.process;
    }

    static std::string_view GetMeaning(const Services::ComponentStatus& component)
    {
        const auto* found = std::find_if(componentStates.begin(), componentStates.end(),
                                         [&](const ComponentState& state) { return state.name == component.state; });
        return found == componentStates.end() ? "" : found->meaning;
    }

    static void Write(Output& output, const Services::SystemStatus& status, const Services::ComponentStatus& component,
                      const std::vector<Services::TimedStep>& waits, const std::string& advice)
    {
        output.WriteLine(fmt::format("Component '{}' is {}. {}", component.name,
                                     output.Paint(component.state, GetStateStyle(component.state)),
                                     GetMeaning(component)));
        output.WriteLine(fmt::format("  System:     {}{}", status.state,
                                     status.phase.empty() ? "" : fmt::format(", in phase '{}'", status.phase)));
        output.WriteLine(fmt::format("  Process:    {}", component.process));
        if (!component.step.empty())
        {
            output.WriteLine(fmt::format("  {} {} of phase '{}', {}{}{}",
                                         component.state == "busy" ? "Step:      " : "Last step: ", component.step,
                                         component.phase, component.state == "busy" ? "for " : "",
                                         FormatDuration(status.now - component.since),
                                         component.state == "busy" ? "" : " ago"));
        }
        output.WriteLine(fmt::format("  Configured: {}", component.position));
        output.WriteLine(fmt::format("  Type:       {}, library {}", component.type,
                                     component.library.empty() ? "of the executable" : component.library));
        output.WriteLine(fmt::format("              {}, {}", component.isRequired ? "required" : "not required",
                                     component.isEnabled ? "enabled" : "disabled"));
        if (!component.settingsPath.empty())
        {
            output.WriteLine("  Settings:   " + component.settingsPath);
        }
        for (const auto& step : waits)
        {
            output.WriteLine(fmt::format("  Waits for:  {}, for {}", Describe(step),
                                         FormatDuration((step.end - step.begin) / 1000)));
        }
        if (component.failure.time != 0)
        {
            output.WriteLine(fmt::format("  Failed:     in {} of phase '{}' at {}:", component.failure.step,
                                         component.failure.phase, FormatTime(component.failure.time)));
            WriteIndented(output, component.failure.text);
        }
        else if (status.failure.time != 0)
        {
            output.WriteLine("  The set-up of the system has failed:");
            WriteIndented(output, status.failure.text);
        }
        output.WriteLine("  Next:       " + advice);
    }

    static void WriteIndented(Output& output, std::string_view text)
    {
        while (!text.empty())
        {
            const auto end = text.find('\n');
            output.WriteLine("      " + MakePlainText(text.substr(0, end)));
            text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        }
    }

    std::string name;
};

} // namespace

std::unique_ptr<Command> CreateExplain()
{
    return std::make_unique<Explain>();
}

} // namespace Vela::Kiroctl
