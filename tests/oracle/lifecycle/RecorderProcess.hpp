#pragma once

#include "LifecycleCase.hpp"

#include <Pm/IProcessHost.hpp>
#include <Pm/ProcessManager.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>

namespace Vela::Testing
{

/// A process of the system without a process of its own: a real process manager behind its service, reached by a wire
/// that breaks where the case says so.
class RecorderProcess : public System::Kiro::Services::Internal::IProcessManagerService,
                        public System::Kiro::IApplication,
                        public System::Kiro::Internal::Pm::IProcessHost
{
public:
    using Properties = System::Kiro::Services::Internal::ComponentProperties;

    RecorderProcess(std::string processName, const LifecycleCase& wholeSystem);
    ~RecorderProcess() override;

    [[nodiscard]] System::Kiro::Internal::Pm::ProcessManager& GetManager() noexcept;
    /// Lets the process manager do what the case calls so: "Create", "BuildUp", "Initialize", ...
    void Operate(const ComponentCase& component, const std::string& operation);

    [[nodiscard]] String GetName() const override;
    void RequestProcessShutdown() override;

    void ShutdownProcess() override;
    bool LoadLibrary(const Text& libraryName, const Text& libraryPath) override;
    void UnloadLibrary(const Text& libraryName) override;
    Properties CreateComponent(const Text& type, const Text& component, const Text& libraryName) override;
    void LoadComponentSettings(const Text& component, const Text& settingsPath) override;
    bool SetEnvironmentVariable(const System::Rsc::RscString<128>& variable,
                                System::Rsc::RscVariant<512> value) override;

    // clang-format off
    void DestroyComponent(const Text& component) override { Take(component, "Destroy"); }
    void InitializeComponent(const Text& component) override { Take(component, "Initialize"); }
    void SetupComponentSettings(const Text& component) override { Take(component, "SetupSettings"); }
    void SubscribeComponentServices(const Text& component) override { Take(component, "SubscribeServices"); }
    void LoadComponentConfig(const Text& component) override { Take(component, "LoadConfig"); }
    void SetupComponentConfig(const Text& component) override { Take(component, "SetupConfig"); }
    void PublishComponentServices(const Text& component) override { Take(component, "PublishServices"); }
    void StartComponent(const Text& component) override { Take(component, "Start"); }
    void StopComponent(const Text& component) override { Take(component, "Stop"); }
    void ResetComponentConfig(const Text& component) override { Take(component, "ResetConfig"); }
    void DisposeComponent(const Text& component) override { Take(component, "Dispose"); }
    void PowerDownComponent(const Text& component) override { Take(component, "PowerDown"); }
    // clang-format on

private:
    using ProcessManager = System::Kiro::Internal::Pm::ProcessManager;

    /// The component, when the call comes through.
    const ComponentCase& Reach(const Text& component, const std::string& step) const;
    void Take(const Text& component, const std::string& step);

    const std::string name;
    const LifecycleCase& system;
    ProcessManager manager{*this, *this};
};

} // namespace Vela::Testing
