#pragma once

#include "IRecordingService.hpp"
#include "Script.hpp"

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace Vela::Testing
{

/// What a recorder says of itself.
struct RecorderTraits
{
    System::Kiro::ComponentCategory category = System::Kiro::ComponentCategory::Custom;
    std::uint32_t startOrder = System::Kiro::ComponentBase::GetDefaultStartOrder();
    bool isSingleton = false;
};

/// Records every step that it takes and does what its script says.
class Recorder : public System::Kiro::ComponentBase, private System::Commons::Diagnostics::Loggable<Recorder>
{
public:
    Recorder(System::Kiro::IApplication& application, System::Kiro::ILibrary& library, const String& name,
             const RecorderTraits& traits);
    ~Recorder() override;

    void Initialize() override;
    void SubscribeServices() override;
    void LoadSettings(const String& settingsPath) override;
    void SetupSettings() override;
    void PublishServices() override;
    void LoadConfig() override;
    void SetupConfig() override;
    void ResetConfig() override;
    void Dispose() override;
    void PowerDown() override;

protected:
    /// Traces and logs the step, then carries out its actions.
    void Take(const char* step);

private:
    class Service;

    void TakeLast();

    /// Writes the step into trace and log.
    void Report(const char* step) const;
    void Act(const String& action);
    void Publish(const String& serviceName);

    const String process;
    Script script;
    const std::shared_ptr<Service> service;
    std::atomic<std::uint32_t> stepCount{0};
    /// Wait for their FIFOs; joined before the library may go.
    std::vector<std::thread> threads;
};

/// A recorder that is started and stopped.
class RecordingController : public Recorder, public System::Kiro::IControllerComponent
{
public:
    using Recorder::Recorder;

    void Start() override;
    void Stop() override;
};

/// The same as a type of its own: what counts for singletons is the run-time type.
template <typename Base>
class SingularRecorder final : public Base
{
public:
    using Base::Base;
};

} // namespace Vela::Testing
