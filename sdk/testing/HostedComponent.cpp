#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>
#include <Vela/System/Kiro/Testing/ComponentLibrary.hpp>
#include <Vela/System/Kiro/Testing/HostedComponent.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace Vela::System::Kiro::Testing
{

namespace
{

using Service = Services::Internal::IProcessManagerService;

/// The steps that the process manager takes by a component's name alone.
const std::map<LifecycleStep, void (Service::*)(const Service::Text&)> operations{
    {LifecycleStep::Initialize, &Service::InitializeComponent},
    {LifecycleStep::SubscribeServices, &Service::SubscribeComponentServices},
    {LifecycleStep::SetupSettings, &Service::SetupComponentSettings},
    {LifecycleStep::PublishServices, &Service::PublishComponentServices},
    {LifecycleStep::LoadConfig, &Service::LoadComponentConfig},
    {LifecycleStep::SetupConfig, &Service::SetupComponentConfig},
    {LifecycleStep::Start, &Service::StartComponent},
    {LifecycleStep::PowerDown, &Service::PowerDownComponent},
    {LifecycleStep::Stop, &Service::StopComponent},
    {LifecycleStep::ResetConfig, &Service::ResetComponentConfig},
    {LifecycleStep::Dispose, &Service::DisposeComponent},
};

/// What takes back which steps, in the order of the way down.
const std::vector<std::pair<LifecycleStep, std::set<LifecycleStep>>> undoingSteps{
    {LifecycleStep::Stop, {LifecycleStep::Start}},
    {LifecycleStep::ResetConfig, {LifecycleStep::LoadConfig, LifecycleStep::SetupConfig}},
    {LifecycleStep::Dispose,
     {LifecycleStep::Initialize, LifecycleStep::SubscribeServices, LifecycleStep::LoadSettings,
      LifecycleStep::SetupSettings, LifecycleStep::PublishServices}},
    {LifecycleStep::Destroy, {LifecycleStep::Create}},
};

/// The library that a description means, and its path.
const std::pair<const String, String>& FindLibrary(const String& name)
{
    const auto& libraries = ComponentLibrary::GetAll();
    if (name.empty() && libraries.size() == 1)
    {
        return *libraries.begin();
    }
    if (const auto found = libraries.find(name); found != libraries.end())
    {
        return *found;
    }
    String known;
    for (const auto& [library, path] : libraries)
    {
        known += fmt::format(" '{}'", library);
    }
    throw InvalidOperationException("The test has no library '{0}'; it has{1}.", name, known.empty() ? " none" : known);
}

} // namespace

HostedComponent::HostedComponent(ComponentHost& componentHost, ComponentDescription componentDescription)
    : host(componentHost)
    , description(std::move(componentDescription))
{
    try
    {
        const auto& [libraryName, path] = FindLibrary(description.library);
        Service& processManager = host.GetProcessManager();
        processManager.LoadLibrary(libraryName, path);
        library = libraryName;
        try
        {
            properties = processManager.CreateComponent(description.type, description.name, library);
        }
        catch (...)
        {
            processManager.UnloadLibrary(library);
            throw;
        }
        stepsTaken.insert(LifecycleStep::Create);
    }
    catch (...)
    {
        throw StepFailure(LifecycleStep::Create, description.name, CaughtException::Current());
    }
}

HostedComponent::~HostedComponent()
{
    try
    {
        TearDown();
    }
    catch (const Exception& exception)
    {
        ADD_FAILURE() << exception.what();
    }
}

void HostedComponent::Run(LifecycleStep step)
{
    // Also for a step that fails: it may have done half of its work, or undone it.
    stepsTaken.insert(step);
    for (const auto& [undoingStep, undone] : undoingSteps)
    {
        if (undoingStep == step)
        {
            std::erase_if(stepsTaken, [&steps = undone](LifecycleStep taken) { return steps.contains(taken); });
        }
    }
    try
    {
        CallStep(step);
    }
    catch (...)
    {
        throw StepFailure(step, description.name, CaughtException::Current());
    }
}

String HostedComponent::RunAndExpectFailure(LifecycleStep step)
{
    try
    {
        Run(step);
    }
    catch (const StepFailure& failure)
    {
        return failure.GetCause().GetTier() == CaughtException::Tier::Unspecified ? failure.GetCause().GetText()
                                                                                  : failure.GetCause().GetMessage();
    }
    ADD_FAILURE() << fmt::format("{} of component '{}' did not fail.", step, description.name);
    return {};
}

void HostedComponent::BringUp()
{
    BringUpTo(LifecycleStep::Start);
}

void HostedComponent::BringUpTo(LifecycleStep last)
{
    for (const auto& [step, name] : GetEnumDictionary(last).GetEntries())
    {
        const bool isForward = step > LifecycleStep::Create && step <= LifecycleStep::Start;
        if (isForward && step <= last && !stepsTaken.contains(step))
        {
            Run(step);
        }
    }
}

void HostedComponent::TearDown()
{
    std::optional<StepFailure> firstFailure;
    for (const auto& [step, undone] : undoingSteps)
    {
        const bool isNeeded =
            std::ranges::any_of(undone, [this](LifecycleStep cause) { return stepsTaken.contains(cause); });
        try
        {
            if (isNeeded)
            {
                Run(step);
            }
        }
        catch (const StepFailure& failure)
        {
            if (!firstFailure)
            {
                firstFailure.emplace(failure);
            }
        }
    }
    if (firstFailure)
    {
        throw StepFailure(*firstFailure);
    }
}

const String& HostedComponent::GetName() const noexcept
{
    return description.name;
}

const HostedComponent::Properties& HostedComponent::GetProperties() const noexcept
{
    return properties;
}

void HostedComponent::CallStep(LifecycleStep step)
{
    Service& processManager = host.GetProcessManager();
    if (step == LifecycleStep::LoadSettings)
    {
        processManager.LoadComponentSettings(description.name, description.settingsPath);
    }
    else if (step == LifecycleStep::Destroy)
    {
        processManager.DestroyComponent(description.name);
        processManager.UnloadLibrary(library);
    }
    else if (const auto found = operations.find(step); found != operations.end())
    {
        (processManager.*found->second)(description.name);
    }
    else
    {
        throw ArgumentException("{0} is the constructor's step.", step);
    }
}

Rsc::ServiceProvider HostedComponent::GetProvider(const String& serviceName) const
{
    return Rsc::ServiceProvider::Component(description.name, serviceName);
}

} // namespace Vela::System::Kiro::Testing
