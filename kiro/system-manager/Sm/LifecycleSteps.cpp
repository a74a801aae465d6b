#include <Sm/LifecycleSteps.hpp>

namespace Vela::System::Kiro::Internal::Sm::LifecycleSteps
{

namespace
{

using Data::ComponentData;
using Data::ComponentExecutionData;
using Services::Internal::IProcessManagerService;
using RemoteName = Rsc::RscString<512>;

template <auto Operation>
constexpr RemoteStep ByName(const char* name)
{
    return {name, [](IProcessManagerService& service, const ComponentData& component)
            {
                (service.*Operation)(RemoteName(component.name));
            }};
}

constexpr RemoteStep loadSettings{
    "LoadComponentSettings", [](IProcessManagerService& service, const ComponentData& component)
    {
        service.LoadComponentSettings(RemoteName(component.name), RemoteName(component.settingsPath));
    }};

constexpr RemoteStep settingsCalls[] = {
    ByName<&IProcessManagerService::InitializeComponent>("InitializeComponent"),
    ByName<&IProcessManagerService::SubscribeComponentServices>("SubscribeComponentServices"),
    loadSettings,
    ByName<&IProcessManagerService::SetupComponentSettings>("SetupComponentSettings"),
    ByName<&IProcessManagerService::PublishComponentServices>("PublishComponentServices"),
};
constexpr RemoteStep configCalls[] = {
    ByName<&IProcessManagerService::LoadComponentConfig>("LoadComponentConfig"),
    ByName<&IProcessManagerService::SetupComponentConfig>("SetupComponentConfig"),
};
constexpr RemoteStep startCalls[] = {ByName<&IProcessManagerService::StartComponent>("StartComponent")};
constexpr RemoteStep stopCalls[] = {ByName<&IProcessManagerService::StopComponent>("StopComponent")};
constexpr RemoteStep resetCalls[] = {ByName<&IProcessManagerService::ResetComponentConfig>("ResetComponentConfig")};
constexpr RemoteStep disposeCalls[] = {ByName<&IProcessManagerService::DisposeComponent>("DisposeComponent")};
constexpr RemoteStep powerDownCalls[] = {ByName<&IProcessManagerService::PowerDownComponent>("PowerDownComponent")};
constexpr RemoteStep destroyCalls[] = {ByName<&IProcessManagerService::DestroyComponent>("DestroyComponent")};

template <bool ComponentExecutionData::*Flag>
bool& Mark(ComponentExecutionData& entry)
{
    return entry.*Flag;
}

bool& CreatedMark(ComponentExecutionData& entry)
{
    return entry.component->isCreated;
}

// Operators search their logs for these texts: the odd blanks and words in them are kept.

constexpr LifecycleStep setupSettingsStep{
    "Setting up component '{0}' in process '{1}'.",
    "Setuped component'{0}' in process '{1}' .",
    {"Exception occurs while setting up component '{0}': {1}",
     "Unspecified exception occurs while setting up component '{0}'"},
    settingsCalls,
    &Mark<&ComponentExecutionData::isSettingsSetup>,
};

constexpr LifecycleStep setupConfigStep{
    "Configuring component '{0}' in process '{1}'.",
    "Configured component'{0}' in process '{1}' .",
    {"Exception occurs while setting up config of component '{0}': {1}",
     "Unspecified exception occurs while setting up config of component '{0}'"},
    configCalls,
    &Mark<&ComponentExecutionData::isConfigured>,
};

constexpr LifecycleStep startStep{
    "Starting component '{0}' in process '{1}'.",
    "Started component'{0}' in process '{1}'.",
    {"Exception occurs while starting component '{0}': {1}",
     "Unspecified exception occurs while starting component '{0}'"},
    startCalls,
    &Mark<&ComponentExecutionData::isStarted>,
};

constexpr LifecycleStep stopStep{
    "Stopping component '{0}' in process '{1}'.",
    "Stopped component'{0}' in process '{1}'.",
    {"Exception occurs while stopping component '{0}': {1}",
     "Unspecified exception occurs while stopping component '{0}'"},
    stopCalls,
    &Mark<&ComponentExecutionData::isStarted>,
};

constexpr LifecycleStep resetConfigStep{
    "Resetting config of component '{0}' in process '{1}'.",
    "Reset config of component '{0}' in process '{1}'.",
    {"Exception occurs while resetting config of component '{0}': {1}",
     "Unspecified exception occurs while resetting config of component '{0}'"},
    resetCalls,
    &Mark<&ComponentExecutionData::isConfigured>,
};

constexpr LifecycleStep disposeStep{
    "Disposing component '{0}' in process '{1}'.",
    "Disposed component'{0}' in process '{1}'.",
    {"Exception occurs while disposing component '{0}': {1}",
     "Unspecified exception occurs while disposing component '{0}'"},
    disposeCalls,
    &Mark<&ComponentExecutionData::isSettingsSetup>,
};

constexpr LifecycleStep powerDownStep{
    "PowerDown component '{0}' in process '{1}'.",
    "PowerDown component '{0}' in process '{1}' done.",
    {"Exception occurs while powerdown component '{0}': {1}",
     "Unspecified exception occurs while powerdown component '{0}'"},
    powerDownCalls,
    &Mark<&ComponentExecutionData::isSettingsSetup>,
};

constexpr LifecycleStep destroyStep{
    "Destroying component '{0}' in process '{1}'.",
    "Destroyed component '{0}' in process '{1}' .",
    {"Exception occurs while destroying component '{0}': {1}",
     "Unspecified exception occurs while destroying component '{0}'"},
    destroyCalls,
    &CreatedMark,
};

constexpr FailureTexts setupSettingsFailure{
    "Exception occurs while setting up settings of component '{0}': {1}",
    "Unspecified exception occurs while setting up settings of component '{0}'",
};

} // namespace

constinit const ForwardPhase setupSettings{setupSettingsStep, true, false, setupSettingsFailure, &dispose};
constinit const ForwardPhase setupConfig{setupConfigStep, false, false, setupConfigStep.failure, &resetConfig};
constinit const ForwardPhase start{startStep, true, true, startStep.failure, nullptr};

constinit const BackwardPhase stop{stopStep, true};
constinit const BackwardPhase resetConfig{resetConfigStep, true};
constinit const BackwardPhase dispose{disposeStep, true};
constinit const BackwardPhase powerDown{powerDownStep, false};
constinit const BackwardPhase destroy{destroyStep, true};

} // namespace Vela::System::Kiro::Internal::Sm::LifecycleSteps
