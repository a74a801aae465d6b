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
    [[nodiscard]] String GetName() const override;
    void RequestProcessShutdown() override;

    void ShutdownProcess() override;
    bool LoadLibrary(const Text& libraryName, const Text& libraryPath) override;
    void UnloadLibrary(const Text& libraryName) override;
    Properties CreateComponent(const Text& type, const Text& component, const Text& libraryName) override;
    void DestroyComponent(const Text& component) override;
    void InitializeComponent(const Text& component) override;
    void LoadComponentSettings(const Text& component, const Text& settingsPath) override;
    void SetupComponentSettings(const Text& component) override;
    void SubscribeComponentServices(const Text& component) override;
    void LoadComponentConfig(const Text& component) override;
    void SetupComponentConfig(const Text& component) override;
    void PublishComponentServices(const Text& component) override;
    void StartComponent(const Text& component) override;
    void StopComponent(const Text& component) override;
    void ResetComponentConfig(const Text& component) override;
    void DisposeComponent(const Text& component) override;
    void PowerDownComponent(const Text& component) override;
    bool SetEnvironmentVariable(const System::Rsc::RscString<128>& variable,
                                System::Rsc::RscVariant<512> value) override;

private:
    using ProcessManager = System::Kiro::Internal::Pm::ProcessManager;

    void Reach(const Text& component, const std::string& step) const;
    void Take(const Text& component, const char* step, void (ProcessManager::*operation)(const String&) const) const;

    const std::string name;
    const LifecycleCase& system;
    ProcessManager manager{*this, *this};
};

} // namespace Vela::Testing
