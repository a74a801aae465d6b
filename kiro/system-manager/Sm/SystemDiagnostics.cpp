#include <Sm/SystemDiagnostics.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/Runtime/ProcessUsage.hpp>

#include <unistd.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

using Commons::Chrono::DateTime;
using Services::Internal::ComponentStatus;
using Services::Internal::FailureReport;
using Services::Internal::ProcessStatus;
using Services::Internal::SystemStatus;
using Services::Internal::TimedStep;
using Services::Internal::Timeline;
using Outcome = StepJournal::Outcome;

namespace
{

constexpr std::string_view componentSubject = "component";

/// The state in which a step leaves a component when it has succeeded. Steps that are not here leave it as it is.
constexpr std::pair<std::string_view, const char*> statesAfterSteps[] = {
    {"CreateComponent", "created"},         {"InitializeComponent", "initialized"},
    {"PublishComponentServices", "set-up"}, {"SetupComponentConfig", "configured-up"},
    {"StartComponent", "running"},          {"StopComponent", "stopped"},
    {"ResetComponentConfig", "set-up"},     {"DisposeComponent", "disposed"},
    {"DestroyComponent", "destroyed"},
};

const char* ToText(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::Running:
        return "running";
    case Outcome::Done:
        return "done";
    case Outcome::Failed:
        break;
    }
    return "failed";
}

String ToText(const char* text)
{
    return text == nullptr ? String() : String(text);
}

} // namespace

SystemDiagnostics::SystemDiagnostics(String systemName, const String& configurationPath)
    : name(std::move(systemName))
    , configuration(Commons::Io::Path::GetFullPath(configurationPath))
{
}

SystemDiagnostics::~SystemDiagnostics() = default;

void SystemDiagnostics::SetState(const char* newState, bool hasError)
{
    const std::lock_guard lock(mutex);
    state = {newState, DateTime::GetUtcNow(), hasError || state.hasError};
}

void SystemDiagnostics::NoteFailure(const String& text)
{
    journal.NoteFailure("", "", name, text);
}

void SystemDiagnostics::PublishProcesses(const Data::ProcessTable& processes)
{
    ProcessList list;
    for (const auto& [processName, process] : processes)
    {
        ProcessStatus& status = list.emplace_back();
        status.name = processName;
        status.isMain = processName == name;
        status.processId = status.isMain ? ::getpid() : process->process.GetId();
        status.state = process->isExternal ? "external" : process->processManagerService ? "connected" : "starting";
    }
    std::shared_ptr<const ProcessList> next = std::make_shared<ProcessList>(std::move(list));
    const std::lock_guard lock(mutex);
    processList.swap(next);
}

void SystemDiagnostics::PublishComponents(const Data::ProcessTable& processes, const Data::ExecutionList& executionList)
{
    ComponentList list;
    std::set<const Data::ComponentData*> listed;
    std::size_t count = 0;
    for (const auto& [processName, process] : processes)
    {
        count += process->components.size();
    }
    list.reserve(count);
    for (const auto& [startOrder, entry] : executionList)
    {
        list.push_back(Describe(*entry.process, entry.component, startOrder));
    }
    // As a rule all take part, or none yet.
    if (list.size() < count)
    {
        for (const Component& component : list)
        {
            listed.insert(component.data.get());
        }
        for (const auto& [processName, process] : processes)
        {
            for (const auto& [componentName, component] : process->components)
            {
                if (!listed.contains(component.get()))
                {
                    list.push_back(Describe(*process, component, component->startOrder));
                }
            }
        }
    }
    std::shared_ptr<const ComponentList> next = std::make_shared<ComponentList>(std::move(list));
    const std::lock_guard lock(mutex);
    componentList.swap(next);
}

SystemDiagnostics::Component SystemDiagnostics::Describe(const Data::ProcessData& process,
                                                         const std::shared_ptr<Data::ComponentData>& component,
                                                         std::uint32_t startOrder)
{
    return {.data = component,
            .process = &*processNames.insert(process.name).first,
            .startOrder = startOrder,
            .isRequired = component->isRequired,
            .isController = component->isControllerComponent,
            .isExternal = process.isExternal};
}

ComponentStatus SystemDiagnostics::Describe(const Component& component)
{
    ComponentStatus status;
    status.name = component.data->name;
    status.type = component.data->type;
    status.library = component.data->library;
    status.process = *component.process;
    status.settingsPath = component.data->settingsPath;
    status.position = component.data->position.ToString();
    status.startOrder = component.startOrder;
    status.isRequired = component.isRequired;
    status.isEnabled = component.data->isEnabled;
    status.isController = component.isController;
    status.state = component.isExternal ? "external" : "configured";
    return status;
}

std::int64_t SystemDiagnostics::ToUtc(StepJournal::Clock::time_point time) const
{
    return journal.GetOrigin().GetMicroseconds() +
           std::chrono::duration_cast<std::chrono::microseconds>(time - journal.GetOriginTime()).count();
}

TimedStep SystemDiagnostics::Describe(const StepJournal::Step& step) const
{
    const auto sinceOrigin = [this](StepJournal::Clock::time_point time)
    {
        return std::chrono::duration_cast<std::chrono::nanoseconds>(time - journal.GetOriginTime()).count();
    };
    return {.phase = ToText(step.phase),
            .step = step.step,
            .subject = step.subject,
            .name = *step.name,
            .process = *step.process,
            .begin = sinceOrigin(step.begin),
            .end = sinceOrigin(step.end),
            .outcome = ToText(step.outcome)};
}

FailureReport SystemDiagnostics::Describe(const StepJournal::Failure& failure)
{
    return {.phase = ToText(failure.phase),
            .step = ToText(failure.step),
            .time = failure.time.GetMicroseconds(),
            .text = failure.text};
}

SystemStatus SystemDiagnostics::GetStatus() const
{
    State current;
    {
        const std::lock_guard lock(mutex);
        current = state;
    }
    SystemStatus status;
    status.name = name;
    status.state = current.name;
    status.since = current.since.GetMicroseconds();
    status.startTime = journal.GetOrigin().GetMicroseconds();
    status.now = DateTime::GetUtcNow().GetMicroseconds();
    status.hasError = current.hasError;
    status.phase = ToText(journal.GetPhase());
    status.configuration = configuration;
    const auto failures = journal.GetFailures();
    if (const auto found = failures.find(String()); found != failures.end())
    {
        status.failure = Describe(*found->second);
    }
    for (const auto& step : journal.ReadToLatest())
    {
        if (step.outcome == Outcome::Running)
        {
            status.running.push_back(Describe(step));
        }
    }
    return status;
}

std::vector<ProcessStatus> SystemDiagnostics::GetProcesses() const
{
    ProcessList processes = *Get(processList);
    for (ProcessStatus& process : processes)
    {
        if (process.processId == 0)
        {
            continue;
        }
        const auto usage = Commons::Runtime::ReadProcessUsage(process.processId);
        if (!usage || usage->state == 'Z')
        {
            process.state = "ended";
            process.processId = 0;
            continue;
        }
        process.resources = {.residentBytes = usage->residentBytes,
                             .proportionalBytes = usage->proportionalBytes,
                             .userTime = usage->userTime.count(),
                             .systemTime = usage->systemTime.count(),
                             .threads = usage->threads,
                             .state = String(1, usage->state)};
    }
    const auto steps = journal.Read();
    for (ProcessStatus& process : processes)
    {
        const auto started =
            std::find_if(steps.begin(), steps.end(),
                         [&](const StepJournal::Step& step)
                         { return std::string_view(step.subject) == "process" && *step.name == process.name; });
        process.startTime = process.isMain           ? journal.GetOrigin().GetMicroseconds()
                            : started != steps.end() ? ToUtc(started->begin)
                                                     : 0;
    }
    return processes;
}

std::vector<ComponentStatus> SystemDiagnostics::GetComponents() const
{
    std::vector<ComponentStatus> components;
    for (const Component& component : *Get(componentList))
    {
        components.push_back(Describe(component));
    }
    std::map<std::string_view, ComponentStatus*> byName;
    for (ComponentStatus& component : components)
    {
        byName.emplace(component.name, &component);
    }
    for (const auto& step : journal.ReadToLatest())
    {
        const auto found = byName.find(*step.name);
        if (step.subject != componentSubject || found == byName.end())
        {
            continue;
        }
        ComponentStatus& component = *found->second;
        component.phase = ToText(step.phase);
        component.step = step.step;
        component.since = ToUtc(step.outcome == Outcome::Running ? step.begin : step.end);
        const auto after = std::find_if(std::begin(statesAfterSteps), std::end(statesAfterSteps),
                                        [&](const auto& entry) { return entry.first == component.step; });
        if (step.outcome == Outcome::Running)
        {
            component.state = "busy";
        }
        else if (step.outcome == Outcome::Failed)
        {
            // A power-down changes no state, neither does one that fails.
            component.state = component.step == "PowerDownComponent" ? component.state : "failed";
        }
        else if (after != std::end(statesAfterSteps))
        {
            component.state = after->second;
        }
    }
    const auto failures = journal.GetFailures();
    for (ComponentStatus& component : components)
    {
        if (const auto found = failures.find(component.name); found != failures.end())
        {
            component.failure = Describe(*found->second);
            const bool isGone = component.state == "destroyed" || component.state == "disposed";
            const bool wasForward = component.failure.phase == "settings" || component.failure.phase == "config" ||
                                    component.failure.phase == "start";
            if (isGone && wasForward)
            {
                component.state = component.isRequired ? "failed" : "removed";
            }
        }
        if (component.state == "created" && !component.isEnabled)
        {
            component.state = "disabled";
        }
    }
    return components;
}

Timeline SystemDiagnostics::GetTimeline() const
{
    Timeline timeline;
    timeline.system = name;
    timeline.origin = journal.GetOrigin().GetMicroseconds();
    timeline.dropped = journal.GetDropped();
    for (const auto& step : journal.Read())
    {
        timeline.steps.push_back(Describe(step));
    }
    return timeline;
}

} // namespace Vela::System::Kiro::Internal::Sm
