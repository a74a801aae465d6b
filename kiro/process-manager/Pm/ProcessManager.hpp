#pragma once

#include <Pm/ComponentProvider.hpp>
#include <Pm/IProcessHost.hpp>
#include <Pm/LoadedLibrary.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/IComponent.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Kiro/Internal/Pm/StaticLibrariesLoader.hpp>
#include <Vela/System/Kiro/Services/Internal/ComponentProperties.hpp>

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>

namespace Vela::System::Kiro::Internal::Pm
{

using Services::Internal::ComponentProperties;

/// The libraries and components of a process, and every single step of their lifecycle. It decides nothing about order.
///
/// Thread-safe: each operation may be called on any thread. The locks guard the tables only and are never held while
/// code of a library or component runs. Two steps of one component at the same time are the caller's business. Setup
/// and Dispose belong to the owner; operations that are still running when Dispose returns keep their library mapped,
/// and the object must then not be deleted.
///
/// Exceptions of components pass through unchanged unless it is said otherwise.
class ProcessManager : private Commons::Diagnostics::Loggable<ProcessManager>
{
public:
    /// Both must outlive the process manager.
    ProcessManager(IApplication& application, IProcessHost& host);
    ProcessManager(const ProcessManager&) = delete;
    ProcessManager& operator=(const ProcessManager&) = delete;
    ~ProcessManager();

    /// Loads the static libraries and publishes the process manager service.
    void Setup();
    /// Withdraws the services that are left, drops all components and unloads all libraries. A step that fails is
    /// logged, and the others are done all the same.
    void Dispose();

    /// Asks the hosting application to end without starting again. Returns at once.
    void ShutdownProcess();
    /// Sets a variable of the process's environment. False for a name that no environment can hold.
    bool SetEnvironmentVariable(const String& name, const String& value);

    /// Replaces the static libraries by those that are linked into the executable.
    void LoadStaticLibraries();
    /// Loads a library, or counts one more user when one of that name is loaded already; the path does not matter then.
    /// @throws what SharedLibraryLoader::Load throws; no library stays loaded then
    bool TryLoadLibrary(const String& libraryName, const String& libraryPath);
    /// The same; always true when it returns.
    bool LoadLibrary(const String& libraryName, const String& libraryPath);
    /// Counts one user less and unloads the library when it was the last. A library that somebody still runs code of
    /// stays mapped, with a warning.
    /// @throws KeyNotFoundException
    void UnloadLibrary(const String& libraryName);
    /// Unloads all libraries, however often they were loaded.
    void UnloadSharedLibraries();
    /// A loaded library; valid until it is unloaded.
    /// @throws KeyNotFoundException
    LoadedLibrary& GetLibrary(const String& libraryName);

    /// Makes a component and enters it into the table.
    /// @param libraryName  empty: a static library
    /// @throws KeyNotFoundException when the library is not loaded; InvalidOperationException when it makes no
    ///         components or the type is unknown, or when the name, or a singleton's type, is taken. There is no such
    ///         component then.
    ComponentProperties CreateComponent(const String& componentType, const String& componentName,
                                        const String& libraryName);
    /// The same from the static libraries; such a component is never reported as a system or controller component.
    ComponentProperties CreateStaticComponent(const String& componentType, const String& componentName);
    /// Drops a component: withdraws its services, waits a bounded time for their calls in progress, and lets its last
    /// reference go. When a call does not end in time the component and its library stay, with a warning.
    /// @throws InvalidOperationException when there is none of that name
    void DestroyComponent(const String& componentName);

    /// One step of one component each, with a trace message when it is done. Those that take a name throw
    /// InvalidOperationException when there is no such component. Start and Stop leave alone what is no controller.
    void InitializeComponent(IComponent& component) const;
    void SubscribeComponentServices(IComponent& component) const;
    void LoadComponentSettings(IComponent& component, const String& settingsPath) const;
    void SetupComponentSettings(IComponent& component) const;
    void PublishComponentServices(IComponent& component) const;
    void LoadComponentConfig(IComponent& component) const;
    void SetupComponentConfig(IComponent& component) const;
    void StartComponent(IComponent& component) const;
    void StopComponent(IComponent& component) const;
    void ResetComponentConfig(IComponent& component) const;
    void DisposeComponent(IComponent& component) const;
    void PowerDownComponent(IComponent& component) const;

    void InitializeComponent(const String& componentName) const;
    void SubscribeComponentServices(const String& componentName) const;
    void LoadComponentSettings(const String& componentName, const String& settingsPath) const;
    void SetupComponentSettings(const String& componentName) const;
    void PublishComponentServices(const String& componentName) const;
    void LoadComponentConfig(const String& componentName) const;
    void SetupComponentConfig(const String& componentName) const;
    void StartComponent(const String& componentName) const;
    void StopComponent(const String& componentName) const;
    void ResetComponentConfig(const String& componentName) const;
    void DisposeComponent(const String& componentName) const;
    void PowerDownComponent(const String& componentName) const;

    /// Creates a component and takes it through its steps up to Start. When a step fails, what was done is undone and
    /// the step's exception passes on; failures of the undoing are logged.
    ComponentProperties BuildUpComponent(const String& componentName, const String& componentType,
                                         const String& libraryName, const String& settingsPath);
    /// Stops, resets, disposes and destroys a component; every step is tried.
    /// @throws ArgumentException when there is none of that name; InvalidOperationException with the text of the last
    ///         step that failed
    void TearDownComponent(const String& componentName);

    [[nodiscard]] ComponentProvider& GetComponentProvider() noexcept;

private:
    using Step = std::function<void()>;

    /// A library whose code is about to run.
    struct LibraryInUse
    {
        ILibrary& library;
        std::shared_ptr<LibraryUsage::Hold> hold;
    };

    [[nodiscard]] LibraryInUse UseLibrary(const String& libraryName);
    [[nodiscard]] std::shared_ptr<IComponent> CreateFromStaticLibraries(const String& componentType,
                                                                        const String& componentName);
    void ReleaseComponent(const String& componentName, std::shared_ptr<IComponent> component) const;
    [[nodiscard]] bool Unload(const String& libraryName, LoadedLibrary& library) const;

    [[nodiscard]] std::shared_ptr<IComponent> FindComponent(const String& componentName) const;
    void RunStep(IComponent& component, void (IComponent::*step)(), const char* stepName) const;
    void RunControllerStep(IComponent& component, void (IControllerComponent::*step)(), const char* stepName) const;
    /// Runs a step of a sequence that has to go to its end; a failure is logged. False when it failed.
    bool Guard(const char* what, const String& name, const Step& step) const;

    IApplication& application;
    IProcessHost& host;
    mutable std::mutex mutex;
    std::condition_variable loadingEnded;
    /// Libraries whose entry function is running.
    std::set<String> loadingLibraries;
    std::map<String, LoadedLibrary> sharedLibraries;
    std::list<LoadedLibrary> staticLibraries;
    StaticLibrariesLoader staticLibrariesLoader;
    ComponentProvider componentProvider;
};

} // namespace Vela::System::Kiro::Internal::Pm
