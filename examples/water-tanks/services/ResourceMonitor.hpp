#pragma once

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>

#include <chrono>
#include <optional>

namespace WaterTanks
{

/// Tells now and then what its process costs: memory and processor time. Configured for the process "*" there is one
/// in every process.
class ResourceMonitor final : public Vela::System::Kiro::ComponentBase,
                              public Vela::System::Kiro::IControllerComponent,
                              private Vela::System::Commons::Diagnostics::Loggable<ResourceMonitor>
{
public:
    ResourceMonitor(Vela::System::Kiro::IApplication& application, Vela::System::Kiro::ILibrary& library,
                    const Vela::String& name);

    void Start() override;
    void Stop() override;

private:
    void Report();

    std::chrono::steady_clock::time_point lastTime;
    std::chrono::nanoseconds lastUse{0};
    bool isFirst = true;
    std::optional<Vela::System::Commons::Threading::WorkerThread> worker;
};

} // namespace WaterTanks
