#include <Config/KiroConfiguration.hpp>
#include <Sm/ComponentsController.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Kiro/ComponentCategory.hpp>
#include <Vela/System/Rsc/RscString.hpp>

#include <algorithm>
#include <vector>

namespace Vela::System::Kiro::Internal::Sm
{

using Commons::Diagnostics::FindingCode;
using Data::ComponentData;
using Data::LibraryData;
using Data::ProcessData;
using RemoteName = Rsc::RscString<512>;

namespace
{

void Refuse(FindingCode code, const Config::Component& component, const String& reason)
{
    Raise(code, component.position,
          InvalidConfigException::At(
              component.position.ToString(),
              fmt::format("Component '{0}' has an invalid configuration: {1}", component.name, reason)));
}

String Describe(const CaughtException& failure, const FailureTexts& texts, const String& componentName)
{
    return failure.Describe(texts.known, texts.unspecified, componentName);
}

} // namespace

ComponentsController::ComponentsController(const ISystemManagerHost& systemManagerHost,
                                           const Data::ProcessTable& processTable, SlowCallWatcher& slowCallWatcher)
    : host(systemManagerHost)
    , processes(processTable)
    , slowCalls(slowCallWatcher)
{
}

void ComponentsController::SetupConfig(const Config::KiroConfiguration& configuration, bool singleProcess)
{
    FillTables(configuration, singleProcess, host.GetName(), processes);
}

void ComponentsController::FillTables(const Config::KiroConfiguration& configuration, bool singleProcess,
                                      const String& mainProcessName, const Data::ProcessTable& table)
{
    log.Debug("Parse component configuration.");
    const auto& libraries = configuration.libraries.GetItems();
    for (const auto& [name, configured] : configuration.components.GetItems())
    {
        const bool isInMainProcess = singleProcess || configured.process.empty();
        const auto process = table.find(isInMainProcess ? mainProcessName : configured.process);
        if (process == table.end())
        {
            Refuse(FindingCode::UnknownProcess, configured,
                   fmt::format("Process '{0}' is unknown.", configured.process));
            continue;
        }
        if (process->second->isExternal)
        {
            // No warning: a generic component has a copy here that nobody asked for.
            log.Info("Component '{0}' is not created: its process '{1}' is external.", name, process->first);
        }

        auto component = std::make_shared<ComponentData>();
        component->name = name;
        component->type = configured.type;
        component->library = configured.library;
        component->settingsPath = configured.settings.path;
        component->position = configured.position;
        component->isRequired = configured.isRequired;
        component->isEnabled = configured.isEnabled;
        component->hasStartOrder = configured.hasStartOrder;
        component->startOrder = static_cast<std::uint32_t>(configured.startOrder);

        if (!component->library.empty())
        {
            const auto library = libraries.find(component->library);
            if (library == libraries.end())
            {
                Refuse(FindingCode::UnknownLibrary, configured,
                       fmt::format("Library '{0}' is unknown.", configured.library));
                continue;
            }
            auto& records = process->second->libraries;
            if (!records.contains(component->library))
            {
                auto record = std::make_shared<LibraryData>();
                record->name = library->second.name;
                record->path = library->second.binaryPath;
                records.emplace(component->library, record);
                if (!library->second.GetDependencies().GetItems().empty())
                {
                    log.Info("Library '{0}': its dependencies are left to the system's loader.", record->name);
                }
            }
        }
        process->second->components.emplace(name, std::move(component));
    }
}

void ComponentsController::CreateComponents()
{
    for (const auto& [processName, process] : processes)
    {
        if (!process->processManagerService)
        {
            continue;
        }
        for (const auto& [name, component] : process->components)
        {
            CreateComponent(component, process);
        }
    }
}

void ComponentsController::CreateComponent(const std::shared_ptr<ComponentData>& component,
                                           const std::shared_ptr<ProcessData>& process)
{
    log.Debug("Creating component '{0}' in process '{1}'.", component->name, process->name);
    const auto service = process->processManagerService;
    const auto properties = slowCalls.Watched(
        "CreateComponent", "component", component->name, process->name,
        [&]
        {
            try
            {
                return service->CreateComponent(RemoteName(component->type), RemoteName(component->name),
                                                RemoteName(component->library));
            }
            catch (...)
            {
                // What a constructor throws does not say whose it is, and ends the start.
                log.Error("Component '{0}' of type '{1}' from library '{2}' cannot be created in process '{3}'.",
                          component->name, component->type, component->library, process->name);
                throw;
            }
        });
    log.Info("Component '{0}' in process '{1}' created.", component->name, process->name);

    component->isControllerComponent = properties.IsControllerComponent;
    component->isCreated = true;
    component->isRequired = component->isRequired || properties.IsSystemComponent;

    const std::uint32_t startOrder = ChooseStartOrder(*component, properties.StartOrder);
    AddToExecutionList(executionList, process, component, startOrder, properties.Category != ComponentCategory::None);
}

std::uint32_t ComponentsController::ChooseStartOrder(const ComponentData& component, std::uint32_t ownStartOrder)
{
    if (!component.hasStartOrder)
    {
        return ownStartOrder;
    }
    log.Debug("Start order of Component '{0}' was overwritten by configuration. (Original: {1} Configured:{2})",
              component.name, ownStartOrder, component.startOrder);
    return component.startOrder;
}

void ComponentsController::AddToExecutionList(Data::ExecutionList& list, const std::shared_ptr<ProcessData>& process,
                                              const std::shared_ptr<ComponentData>& component, std::uint32_t startOrder,
                                              bool hasCategory)
{
    if (!hasCategory)
    {
        log.Warning("Component '{0}' in process '{1}' ignored for execution: Component category is 'None'.",
                    component->name, process->name);
        return;
    }
    Entry entry;
    entry.startOrder = startOrder;
    entry.process = process;
    entry.component = component;
    list.emplace(startOrder, std::move(entry));
}

void ComponentsController::SetupComponentsSettings()
{
    RunForward(LifecycleSteps::setupSettings, [](const Entry& entry) { return entry.component->isEnabled; });
}

bool ComponentsController::SetupComponentsConfig()
{
    const auto result =
        RunForward(LifecycleSteps::setupConfig, [](const Entry& entry) { return entry.component->isEnabled; });
    return !result.hasOptionalFailed;
}

bool ComponentsController::StartComponents()
{
    const auto result = RunForward(
        LifecycleSteps::start, [](const Entry& entry)
        { return entry.component->isEnabled && entry.isSettingsSetup && entry.component->isControllerComponent; });
    return !result.hasRequiredFailed;
}

ComponentsController::ForwardResult ComponentsController::RunForward(const ForwardPhase& phase,
                                                                     bool (*isEligible)(const Entry&))
{
    ForwardResult result;
    std::vector<Entry*> visited;
    std::list<String> removals;
    for (auto& [startOrder, entry] : executionList)
    {
        if (!isEligible(entry))
        {
            continue;
        }
        visited.push_back(&entry);
        try
        {
            if (!StepForward(phase, entry))
            {
                removals.push_back(entry.component->name);
            }
        }
        catch (...)
        {
            log.Write(Commons::Diagnostics::LogLevel::Error,
                      Describe(CaughtException::Current(), phase.failure, entry.component->name));
            if (phase.rollBack != nullptr)
            {
                std::for_each(visited.rbegin(), visited.rend(),
                              [&](Entry* undone) { StepBackward(*phase.rollBack, *undone); });
                throw;
            }
            result.hasRequiredFailed = true;
        }
    }
    result.hasOptionalFailed = !removals.empty();
    RemoveComponents(removals);
    return result;
}

bool ComponentsController::StepForward(const ForwardPhase& phase, Entry& entry)
{
    const String& name = entry.component->name;
    const String& process = entry.process->name;
    if (phase.needsSettings && !entry.isSettingsSetup)
    {
        throw InvalidOperationException("Component '{0}' was not setup or configured yet", name);
    }
    bool& mark = phase.step.mark(entry);
    if (phase.isOnce && mark)
    {
        return true;
    }
    try
    {
        log.Debug(phase.step.begins, name, process);
        mark = true;
        CallStep(phase.step, entry);
        log.Debug(phase.step.ends, name, process);
        return true;
    }
    catch (...)
    {
        log.Write(Commons::Diagnostics::LogLevel::Error,
                  Describe(CaughtException::Current(), phase.step.failure, name));
        if (entry.component->isRequired)
        {
            throw;
        }
        return false;
    }
}

std::optional<CaughtException> ComponentsController::RunBackward(const BackwardPhase& phase)
{
    std::optional<CaughtException> firstFailure;
    std::for_each(executionList.rbegin(), executionList.rend(),
                  [&](auto& entry)
                  {
                      auto failure = StepBackward(phase, entry.second);
                      if (failure && !firstFailure)
                      {
                          firstFailure = std::move(failure);
                      }
                  });
    return firstFailure;
}

std::optional<CaughtException> ComponentsController::StepBackward(const BackwardPhase& phase, Entry& entry)
{
    bool& mark = phase.step.mark(entry);
    if (!mark)
    {
        return std::nullopt;
    }
    const String& name = entry.component->name;
    const String& process = entry.process->name;
    std::optional<CaughtException> failure;
    try
    {
        log.Debug(phase.step.begins, name, process);
        CallStep(phase.step, entry);
        log.Debug(phase.step.ends, name, process);
    }
    catch (...)
    {
        failure = CaughtException::Current();
        log.Write(Commons::Diagnostics::LogLevel::Error, Describe(*failure, phase.step.failure, name));
    }
    mark = mark && !phase.clearsMark;
    return failure;
}

void ComponentsController::CallStep(const LifecycleStep& step, const Entry& entry)
{
    const auto service = entry.process->processManagerService;
    if (!service)
    {
        throw InvalidOperationException("Process '{0}' is not connected.", entry.process->name);
    }
    for (const RemoteStep& call : step.calls)
    {
        slowCalls.Watched(call.name, "component", entry.component->name, entry.process->name,
                          [&] { call.call(*service, *entry.component); });
    }
}

void ComponentsController::StopComponents()
{
    RunBackward(LifecycleSteps::stop);
}

void ComponentsController::ResetComponentsConfig()
{
    RunBackward(LifecycleSteps::resetConfig);
}

void ComponentsController::DisposeComponents()
{
    RunBackward(LifecycleSteps::dispose);
}

void ComponentsController::PowerDownComponents()
{
    RunBackward(LifecycleSteps::powerDown);
}

void ComponentsController::DestroyComponents()
{
    const auto failure = RunBackward(LifecycleSteps::destroy);
    executionList.clear();
    if (failure)
    {
        failure->Throw();
    }
}

void ComponentsController::Dispose()
{
    StopComponents();
    ResetComponentsConfig();
    DisposeComponents();
    DestroyComponents();
}

void ComponentsController::RemoveComponents(const std::list<String>& names)
{
    for (const String& name : names)
    {
        RemoveComponent(name);
    }
}

void ComponentsController::RemoveComponent(const String& name)
{
    log.Error("Component '{0}' will be disposed and removed.", name);
    const auto found = std::find_if(executionList.begin(), executionList.end(),
                                    [&](const auto& entry) { return entry.second.component->name == name; });
    if (found != executionList.end())
    {
        StepBackward(LifecycleSteps::dispose, found->second);
        StepBackward(LifecycleSteps::destroy, found->second);
        executionList.erase(found);
    }
}

bool ComponentsController::TryGetComponentData(const String& name, Data::ComponentExecutionData& result) const
{
    const auto found = std::find_if(executionList.begin(), executionList.end(),
                                    [&](const auto& entry) { return entry.second.component->name == name; });
    if (found == executionList.end())
    {
        return false;
    }
    result = found->second;
    return true;
}

const Data::ExecutionList& ComponentsController::GetExecutionList() const noexcept
{
    return executionList;
}

} // namespace Vela::System::Kiro::Internal::Sm
