#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/Internal/ComponentProperties.hpp>
#include <Vela/System/Kiro/Testing/ComponentHost.hpp>
#include <Vela/System/Kiro/Testing/StepFailure.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <chrono>
#include <memory>
#include <set>

namespace Vela::System::Kiro::Testing
{

/// A component as a configuration would describe it.
struct ComponentDescription
{
    String type = {};
    String name = {};
    /// What LoadSettings gets.
    String settingsPath = {};
    /// A library of the test (`LIBRARIES` of vela_add_component_test); empty when the test has but one.
    String library = {};
};

/// A component under test. Its library is loaded by the runtime's loader and unloaded behind it.
///
/// Steps are called on the caller's thread. One that fails throws StepFailure, which fails a test that does not expect
/// it. Steps may be called singly, in any order and repeatedly; what the runtime promises to components is BringUp and
/// TearDown.
class HostedComponent
{
public:
    using Properties = Services::Internal::ComponentProperties;

    /// Loads the library and creates the component.
    /// @param componentHost  must outlive this object
    /// @throws StepFailure when the library cannot be loaded or the component not be made; nothing remains then
    HostedComponent(ComponentHost& componentHost, ComponentDescription componentDescription);
    HostedComponent(const HostedComponent&) = delete;
    HostedComponent& operator=(const HostedComponent&) = delete;
    /// TearDown. A step that fails then fails the running test.
    ~HostedComponent();

    /// Takes one step.
    /// @throws StepFailure
    void Run(LifecycleStep step);
    /// Takes one step that has to fail, and answers the message of what was thrown. The running test fails when the
    /// step does not.
    String RunAndExpectFailure(LifecycleStep step);

    /// Takes all steps up to Start that have not been taken yet, as the runtime does when a system comes up.
    /// @throws StepFailure for the first step that fails; those behind it are not taken
    void BringUp();
    /// The same up to and with this step.
    void BringUpTo(LifecycleStep last);
    /// Undoes what has been done, as the runtime does when a system goes down or a set-up fails: Stop after Start,
    /// ResetConfig after LoadConfig, then Dispose, Destroy and the unloading of the library. Every step is tried.
    /// Nothing happens when the component has gone already.
    /// @throws StepFailure for the first step that failed
    void TearDown();

    [[nodiscard]] const String& GetName() const noexcept;
    /// What the component said of itself when it was created.
    [[nodiscard]] const Properties& GetProperties() const noexcept;

    /// A proxy to a service that the component has published.
    /// @param serviceName  empty: the interface's name
    /// @throws InvalidOperationException when it has not
    template <typename Interface, typename Proxy>
    [[nodiscard]] std::shared_ptr<Interface> GetService(const Rsc::RscServiceProxyFactory<Interface, Proxy>& factory,
                                                        const String& serviceName = {}) const
    {
        return Rsc::ServiceManager::GetService(factory, GetProvider(serviceName));
    }

    /// Whether the component has published a service.
    template <typename Interface, typename Proxy>
    [[nodiscard]] bool Publishes(const Rsc::RscServiceProxyFactory<Interface, Proxy>& factory,
                                 const String& serviceName = {}) const
    {
        return Rsc::ServiceManager::TryGetService(factory, GetProvider(serviceName), std::chrono::milliseconds(0)) !=
               nullptr;
    }

private:
    void CallStep(LifecycleStep step);
    [[nodiscard]] Rsc::ServiceProvider GetProvider(const String& serviceName) const;

    ComponentHost& host;
    const ComponentDescription description;
    String library;
    Properties properties;
    /// And not undone since.
    std::set<LifecycleStep> stepsTaken;
};

} // namespace Vela::System::Kiro::Testing
