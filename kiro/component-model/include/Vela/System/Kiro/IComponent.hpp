#pragma once

#include <Vela/BasicVersion.hpp>
#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/ComponentCategory.hpp>

#include <cstdint>

namespace Vela::System::Kiro
{

class IApplication;
class ILibrary;

/// A component of the system. Derive from ComponentBase rather than from this interface; a component that has to be
/// started and stopped implements IControllerComponent besides.
///
/// **Order.** The framework drives all components of all processes through one lifecycle, phase by phase: Initialize,
/// SubscribeServices, LoadSettings, SetupSettings and PublishServices of every component, then LoadConfig and
/// SetupConfig of every component, then Start of the controllers; at the end Stop, ResetConfig and Dispose. Forward
/// phases go in ascending start order, equal ones in the order of their names; backward phases go the exact opposite
/// way. PowerDown is called alone, when the system is told that power is about to fail.
///
/// **Failures.** An operation reports a failure by throwing. When a required component fails in a forward phase, the
/// system does not come up and what was done is undone; a component that failed may therefore be disposed without
/// having seen the operations in between. Backward operations must cope with that. A failure there is logged, and the
/// shutdown goes on.
///
/// **Threads.** The constructor and all lifecycle operations of the components of one process are called one after the
/// other: in the main process on its main thread, in every other process on the one remoting thread that serves the
/// main process. The last reference is dropped, and so the destructor run, on the same thread. The exception is
/// PowerDown, which comes on the remoting thread of whoever asked for it, at any time while the system runs. The
/// getters may be called on any thread. Remote services that a component publishes are called on threads of the
/// remoting library, several at a time, from the moment of their publication until the component is destroyed. A
/// lifecycle operation may take its time but must return: long work belongs on a thread that Start makes and Stop ends.
/// An operation may call services of any process, its own included.
///
/// The order of the virtual operations is a binary contract with component libraries: append nothing, move nothing.
class VELA_KIRO_API IComponent
{
public:
    virtual ~IComponent();

    /// The process that hosts the component.
    [[nodiscard]] virtual IApplication& GetApplication() = 0;
    /// The library that created the component; it outlives it.
    [[nodiscard]] virtual ILibrary& GetLibrary() = 0;
    /// The name given at creation, unique in the system.
    [[nodiscard]] virtual String GetName() const = 0;
    [[nodiscard]] virtual BasicVersion GetVersion() const = 0;
    [[nodiscard]] virtual ComponentCategory GetCategory() const = 0;
    /// The place in the order of phases when the configuration gives none.
    [[nodiscard]] virtual std::uint32_t GetStartOrder() const = 0;
    /// True when a process may hold at most one component of this run-time type.
    [[nodiscard]] virtual bool IsSingleton() const = 0;
    /// True for the categories System and Service.
    [[nodiscard]] virtual bool IsSystemComponent() const = 0;

    /// Takes what the component needs of its own. No other component can be relied upon yet.
    virtual void Initialize() = 0;
    /// Looks up the services of other components that come before this one.
    virtual void SubscribeServices() = 0;
    /// @param settingsPath  the component's settings as configured; may be empty
    virtual void LoadSettings(const String& settingsPath) = 0;
    /// Puts the settings into effect.
    virtual void SetupSettings() = 0;
    /// Publishes the component's services (ComponentBase::PublishComponentService).
    virtual void PublishServices() = 0;
    /// Loads the component's configuration; all services are published now.
    virtual void LoadConfig() = 0;
    /// Puts the configuration into effect.
    virtual void SetupConfig() = 0;
    /// Undoes SetupConfig and LoadConfig, which may be called again afterwards.
    virtual void ResetConfig() = 0;
    /// Gives back everything. The framework itself withdraws the component's services afterwards.
    virtual void Dispose() = 0;
    /// Saves what must not be lost, quickly.
    virtual void PowerDown() = 0;
};

} // namespace Vela::System::Kiro
