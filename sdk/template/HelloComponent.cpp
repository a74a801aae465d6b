#include "HelloComponent.hpp"

#include "HelloLibrary.hpp"

#include <chrono>

using namespace Vela;
using namespace Vela::System::Kiro;

std::shared_ptr<IComponent> HelloComponent::Create(IApplication& application, const String& name)
{
    return std::make_shared<HelloComponent>(application, name);
}

HelloComponent::HelloComponent(IApplication& application, const String& name)
    : ComponentBase(application, HelloLibrary::GetInstance(), name, ComponentCategory::Custom, GetDefaultStartOrder(),
                    false)
    , worker(
          name, [this] { log.Info("'{0}' says hello from process '{1}'.", GetName(), GetApplication().GetName()); },
          std::chrono::seconds(1))
{
}

void HelloComponent::LoadSettings(const String& settingsPath)
{
    log.Info("'{0}' has its settings in '{1}'.", GetName(), settingsPath);
}

void HelloComponent::Start()
{
    worker.Start();
}

void HelloComponent::Stop()
{
    worker.Stop();
}
