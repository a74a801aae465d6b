#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/Services/Internal/ComponentProperties.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscString.hpp>
#include <Vela/System/Rsc/RscVariant.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Drives the libraries and components of one process; every process publishes it. Operations throw what went wrong in
/// the process, and RscException when the process was not reached. The order of the operations is fixed.
class VELA_KIRO_API IProcessManagerService : public Rsc::IRscService
{
public:
    using Text = Rsc::RscString<512>;

    ~IProcessManagerService() override;

    /// Asks the process to end without starting again. Returns at once.
    virtual void ShutdownProcess() = 0;
    /// Loads a library, or counts one more user of it when it is loaded already; the path does not matter then.
    virtual bool LoadLibrary(const Text& libraryName, const Text& libraryPath) = 0;
    /// Counts one user less, and unloads the library when it was the last.
    virtual void UnloadLibrary(const Text& libraryName) = 0;
    /// @param libraryName  empty: a library that is linked into the executable
    virtual ComponentProperties CreateComponent(const Text& componentType, const Text& componentName,
                                                const Text& libraryName) = 0;
    /// Withdraws the component's services and drops it.
    virtual void DestroyComponent(const Text& componentName) = 0;

    /// Each of these calls the component's operation of that name.
    virtual void InitializeComponent(const Text& componentName) = 0;
    virtual void LoadComponentSettings(const Text& componentName, const Text& settingsPath) = 0;
    virtual void SetupComponentSettings(const Text& componentName) = 0;
    virtual void SubscribeComponentServices(const Text& componentName) = 0;
    virtual void LoadComponentConfig(const Text& componentName) = 0;
    virtual void SetupComponentConfig(const Text& componentName) = 0;
    virtual void PublishComponentServices(const Text& componentName) = 0;
    /// A component that is no controller is left alone, here and in StopComponent.
    virtual void StartComponent(const Text& componentName) = 0;
    virtual void StopComponent(const Text& componentName) = 0;
    virtual void ResetComponentConfig(const Text& componentName) = 0;
    virtual void DisposeComponent(const Text& componentName) = 0;
    virtual void PowerDownComponent(const Text& componentName) = 0;

    /// Sets a variable of the process's environment. False for a name that no environment can hold.
    virtual bool SetEnvironmentVariable(const Rsc::RscString<128>& name, Rsc::RscVariant<512> value) = 0;
};

} // namespace Vela::System::Kiro::Services::Internal

template <>
struct Vela::System::Rsc::OperationTable<Vela::System::Kiro::Services::Internal::IProcessManagerService>
{
    using Service = Kiro::Services::Internal::IProcessManagerService;
    static constexpr const char* interfaceName = "Vela.System.Kiro.Services.Internal.IProcessManagerService";
    // What runs component code takes as long as that code takes.
    static constexpr auto operations =
        Operations(Operation<1, &Service::ShutdownProcess>("ShutdownProcess"),
                   Operation<2, &Service::LoadLibrary>("LoadLibrary", onOneThread),
                   Operation<3, &Service::UnloadLibrary>("UnloadLibrary", onOneThread),
                   Operation<4, &Service::CreateComponent>("CreateComponent", onOneThread),
                   Operation<5, &Service::DestroyComponent>("DestroyComponent", onOneThread),
                   Operation<6, &Service::InitializeComponent>("InitializeComponent", onOneThread),
                   Operation<7, &Service::LoadComponentSettings>("LoadComponentSettings", onOneThread),
                   Operation<8, &Service::SetupComponentSettings>("SetupComponentSettings", onOneThread),
                   Operation<9, &Service::SubscribeComponentServices>("SubscribeComponentServices", onOneThread),
                   Operation<10, &Service::LoadComponentConfig>("LoadComponentConfig", onOneThread),
                   Operation<11, &Service::SetupComponentConfig>("SetupComponentConfig", onOneThread),
                   Operation<12, &Service::PublishComponentServices>("PublishComponentServices", onOneThread),
                   Operation<13, &Service::StartComponent>("StartComponent", onOneThread),
                   Operation<14, &Service::StopComponent>("StopComponent", onOneThread),
                   Operation<15, &Service::ResetComponentConfig>("ResetComponentConfig", onOneThread),
                   Operation<16, &Service::DisposeComponent>("DisposeComponent", onOneThread),
                   Operation<17, &Service::PowerDownComponent>("PowerDownComponent", onOneThread),
                   Operation<18, &Service::SetEnvironmentVariable>("SetEnvironmentVariable"));
};
