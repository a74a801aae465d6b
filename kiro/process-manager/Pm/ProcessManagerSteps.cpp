#include <Pm/ProcessManager.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>

namespace Vela::System::Kiro::Internal::Pm
{

using Commons::Diagnostics::Breadcrumb;

std::shared_ptr<IComponent> ProcessManager::FindComponent(const String& componentName) const
{
    if (auto component = componentProvider.GetComponent(componentName))
    {
        return component;
    }
    throw InvalidOperationException("Component '{}' does not exist", componentName);
}

void ProcessManager::RunStep(IComponent& component, void (IComponent::*step)(), const char* stepName) const
{
    const String name = component.GetName();
    const Breadcrumb breadcrumb(stepName, Breadcrumb::component, name);
    (component.*step)();
    log.Trace("{0} of component '{1}' called.", stepName, name);
}

void ProcessManager::RunControllerStep(IComponent& component, void (IControllerComponent::*step)(),
                                       const char* stepName) const
{
    if (auto* controller = dynamic_cast<IControllerComponent*>(&component))
    {
        const String name = component.GetName();
        const Breadcrumb breadcrumb(stepName, Breadcrumb::component, name);
        (controller->*step)();
        log.Trace("{0} of component '{1}' called.", stepName, name);
    }
}

void ProcessManager::InitializeComponent(IComponent& component) const
{
    RunStep(component, &IComponent::Initialize, "Initialize");
}

void ProcessManager::SubscribeComponentServices(IComponent& component) const
{
    RunStep(component, &IComponent::SubscribeServices, "SubscribeServices");
}

void ProcessManager::LoadComponentSettings(IComponent& component, const String& settingsPath) const
{
    const String name = component.GetName();
    const Breadcrumb breadcrumb("LoadSettings", Breadcrumb::component, name);
    component.LoadSettings(settingsPath);
    log.Trace("LoadSettings of component '{0}' with path '{1}' called.", name, settingsPath);
}

void ProcessManager::SetupComponentSettings(IComponent& component) const
{
    RunStep(component, &IComponent::SetupSettings, "SetupSettings");
}

void ProcessManager::PublishComponentServices(IComponent& component) const
{
    RunStep(component, &IComponent::PublishServices, "PublishServices");
}

void ProcessManager::LoadComponentConfig(IComponent& component) const
{
    RunStep(component, &IComponent::LoadConfig, "LoadConfig");
}

void ProcessManager::SetupComponentConfig(IComponent& component) const
{
    RunStep(component, &IComponent::SetupConfig, "SetupConfig");
}

void ProcessManager::StartComponent(IComponent& component) const
{
    RunControllerStep(component, &IControllerComponent::Start, "Start");
}

void ProcessManager::StopComponent(IComponent& component) const
{
    RunControllerStep(component, &IControllerComponent::Stop, "Stop");
}

void ProcessManager::ResetComponentConfig(IComponent& component) const
{
    RunStep(component, &IComponent::ResetConfig, "Reset config");
}

void ProcessManager::DisposeComponent(IComponent& component) const
{
    RunStep(component, &IComponent::Dispose, "Dispose");
}

void ProcessManager::PowerDownComponent(IComponent& component) const
{
    RunStep(component, &IComponent::PowerDown, "PowerDown");
}

void ProcessManager::InitializeComponent(const String& componentName) const
{
    InitializeComponent(*FindComponent(componentName));
}

void ProcessManager::SubscribeComponentServices(const String& componentName) const
{
    SubscribeComponentServices(*FindComponent(componentName));
}

void ProcessManager::LoadComponentSettings(const String& componentName, const String& settingsPath) const
{
    LoadComponentSettings(*FindComponent(componentName), settingsPath);
}

void ProcessManager::SetupComponentSettings(const String& componentName) const
{
    SetupComponentSettings(*FindComponent(componentName));
}

void ProcessManager::PublishComponentServices(const String& componentName) const
{
    PublishComponentServices(*FindComponent(componentName));
}

void ProcessManager::LoadComponentConfig(const String& componentName) const
{
    LoadComponentConfig(*FindComponent(componentName));
}

void ProcessManager::SetupComponentConfig(const String& componentName) const
{
    SetupComponentConfig(*FindComponent(componentName));
}

void ProcessManager::StartComponent(const String& componentName) const
{
    StartComponent(*FindComponent(componentName));
}

void ProcessManager::StopComponent(const String& componentName) const
{
    StopComponent(*FindComponent(componentName));
}

void ProcessManager::ResetComponentConfig(const String& componentName) const
{
    ResetComponentConfig(*FindComponent(componentName));
}

void ProcessManager::DisposeComponent(const String& componentName) const
{
    DisposeComponent(*FindComponent(componentName));
}

void ProcessManager::PowerDownComponent(const String& componentName) const
{
    PowerDownComponent(*FindComponent(componentName));
}

} // namespace Vela::System::Kiro::Internal::Pm
