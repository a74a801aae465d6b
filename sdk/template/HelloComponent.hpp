#pragma once

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>

#include <memory>

/// Says hello once a second while it is started.
class HelloComponent : public Vela::System::Kiro::ComponentBase,
                       public Vela::System::Kiro::IControllerComponent,
                       private Vela::System::Commons::Diagnostics::Loggable<HelloComponent>
{
public:
    static std::shared_ptr<Vela::System::Kiro::IComponent> Create(Vela::System::Kiro::IApplication& application,
                                                                  const Vela::String& name);

    HelloComponent(Vela::System::Kiro::IApplication& application, const Vela::String& name);

    void LoadSettings(const Vela::String& settingsPath) override;
    void Start() override;
    void Stop() override;

private:
    Vela::System::Commons::Threading::WorkerThread worker;
};
