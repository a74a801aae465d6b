#include <Pm/DiagnosticsServiceImpl.hpp>
#include <Pm/ProcessManager.hpp>
#include <Pm/ProcessManagerServiceImpl.hpp>
#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/IComponentFactory.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Pm
{

using Commons::Diagnostics::Breadcrumb;
using Services::Internal::DiagnosticsServiceFactory;
using Services::Internal::ProcessManagerServiceFactory;
using Services::Internal::ProcessManagerServiceProxyFactory;

namespace
{

ComponentProperties GetProperties(IComponent& component)
{
    return {.StartOrder = component.GetStartOrder(),
            .Category = component.GetCategory(),
            .IsSystemComponent = component.IsSystemComponent(),
            .IsControllerComponent = dynamic_cast<IControllerComponent*>(&component) != nullptr};
}

/// Keeps a component, and with it its library, to the end of the process.
void Abandon(std::shared_ptr<IComponent> component)
{
    static std::mutex mutex;
    static auto& abandoned = *new std::vector<std::shared_ptr<IComponent>>;
    const std::lock_guard lock(mutex);
    abandoned.push_back(std::move(component));
}

} // namespace

ProcessManager::ProcessManager(IApplication& application, IProcessHost& host)
    : application(application)
    , host(host)
{
}

ProcessManager::~ProcessManager() = default;

void ProcessManager::Setup()
{
    LoadStaticLibraries();
    auto& diagnostics = DiagnosticsServiceFactory::GetInstance();
    Rsc::ServiceManager::PublishService(diagnostics.GetName(), diagnostics.GetInterfaceName(), diagnostics);
    auto& factory = ProcessManagerServiceFactory::GetInstance();
    Rsc::ServiceManager::PublishService(factory.GetName(),
                                        ProcessManagerServiceProxyFactory::GetInstance().GetInterfaceName(), factory);
}

void ProcessManager::Dispose()
{
    Guard("unpublishing", "process manager",
          []
          {
              Rsc::ServiceManager::UnpublishService(
                  ProcessManagerServiceFactory::GetInstance().GetName(),
                  ProcessManagerServiceProxyFactory::GetInstance().GetInterfaceName());
          });
    Guard("unpublishing", "diagnostics",
          []
          {
              const auto& diagnostics = DiagnosticsServiceFactory::GetInstance();
              Rsc::ServiceManager::UnpublishService(diagnostics.GetName(), diagnostics.GetInterfaceName());
          });
    for (auto& [name, component] : componentProvider.RemoveAllComponents())
    {
        ReleaseComponent(name, std::move(component));
    }
    staticLibrariesLoader.UnloadLibraries(staticLibraries);
    UnloadSharedLibraries();
}

void ProcessManager::ShutdownProcess()
{
    host.RequestProcessShutdown();
}

bool ProcessManager::SetEnvironmentVariable(const String& name, const String& value)
{
    return Commons::Environment::SetVariable(name, value);
}

void ProcessManager::LoadStaticLibraries()
{
    auto loaded = staticLibrariesLoader.LoadLibraries();
    const std::lock_guard lock(mutex);
    staticLibraries = std::move(loaded);
}

bool ProcessManager::TryLoadLibrary(const String& libraryName, const String& libraryPath)
{
    std::unique_lock lock(mutex);
    loadingEnded.wait(lock, [&] { return !loadingLibraries.contains(libraryName); });
    if (const auto found = sharedLibraries.find(libraryName); found != sharedLibraries.end())
    {
        ++found->second.referenceCount;
        return true;
    }
    loadingLibraries.insert(libraryName);
    lock.unlock();

    const auto endLoading = [&]
    {
        loadingLibraries.erase(libraryName);
        loadingEnded.notify_all();
    };
    try
    {
        const Breadcrumb breadcrumb("LoadLibrary", "library", libraryName);
        LoadedLibrary loaded = SharedLibraryLoader::Load(libraryPath, false, {});
        loaded.referenceCount = 1;
        log.Debug("Shared Library '{0}' with path '{1}' loaded.", libraryName, libraryPath);
        lock.lock();
        sharedLibraries.emplace(libraryName, std::move(loaded));
    }
    catch (...)
    {
        if (!lock.owns_lock())
        {
            lock.lock();
        }
        endLoading();
        throw;
    }
    endLoading();
    return true;
}

bool ProcessManager::LoadLibrary(const String& libraryName, const String& libraryPath)
{
    if (!TryLoadLibrary(libraryName, libraryPath))
    {
        throw InvalidOperationException("Could not load library '{0}'.", libraryName);
    }
    return true;
}

void ProcessManager::UnloadLibrary(const String& libraryName)
{
    std::unique_lock lock(mutex);
    const auto found = sharedLibraries.find(libraryName);
    if (found == sharedLibraries.end())
    {
        throw KeyNotFoundException("Could not find library '{0}'.", libraryName);
    }
    if (--found->second.referenceCount > 0)
    {
        return;
    }
    LoadedLibrary library = std::move(found->second);
    sharedLibraries.erase(found);
    lock.unlock();
    if (Unload(libraryName, library))
    {
        log.Debug("Shared Library '{0}' unloaded.", libraryName);
    }
}

void ProcessManager::UnloadSharedLibraries()
{
    std::map<String, LoadedLibrary> libraries;
    {
        const std::lock_guard lock(mutex);
        libraries.swap(sharedLibraries);
    }
    for (auto& entry : libraries)
    {
        Guard("unloading library", entry.first, [&] { std::ignore = Unload(entry.first, entry.second); });
    }
}

bool ProcessManager::Unload(const String& libraryName, LoadedLibrary& library) const
{
    const Breadcrumb breadcrumb("UnloadLibrary", "library", libraryName);
    const bool isUnloaded = SharedLibraryLoader::Unload(library);
    if (!isUnloaded)
    {
        log.Warning("Shared Library '{0}' is still in use and stays mapped.", libraryName);
    }
    return isUnloaded;
}

LoadedLibrary& ProcessManager::GetLibrary(const String& libraryName)
{
    const std::lock_guard lock(mutex);
    const auto found = sharedLibraries.find(libraryName);
    if (found == sharedLibraries.end())
    {
        throw KeyNotFoundException("Library '{0}' not found.", libraryName);
    }
    return found->second;
}

ProcessManager::LibraryInUse ProcessManager::UseLibrary(const String& libraryName)
{
    const std::lock_guard lock(mutex);
    const auto found = sharedLibraries.find(libraryName);
    if (found == sharedLibraries.end())
    {
        throw KeyNotFoundException("Library '{0}' not found.", libraryName);
    }
    if (found->second.library == nullptr)
    {
        throw InvalidOperationException("Library '{0}' has no entry function '{1}' and creates no components.",
                                        libraryName, SharedLibraryLoader::dlMainEntryName);
    }
    return {*found->second.library, std::make_shared<LibraryUsage::Hold>(found->second.usage)};
}

ComponentProperties ProcessManager::CreateComponent(const String& componentType, const String& componentName,
                                                    const String& libraryName)
{
    const Breadcrumb breadcrumb("CreateComponent", Breadcrumb::component, componentName);
    if (libraryName.empty())
    {
        return CreateStaticComponent(componentType, componentName);
    }
    const LibraryInUse used = UseLibrary(libraryName);
    auto created = used.library.GetComponentFactory().CreateComponent(application, componentType, componentName);
    if (created == nullptr)
    {
        throw InvalidOperationException("Factory of library '{0}' created no component '{1}' of type '{2}'.",
                                        libraryName, componentName, componentType);
    }
    const auto component = LibraryUsage::Attach(used.hold, std::move(created));
    const ComponentProperties properties = GetProperties(*component);
    const String version = component->GetVersion().ToString();
    componentProvider.AddComponent(component);
    log.Debug("Component '{0}' of type '{1}' (Version {2}) from library '{3} created.", componentName, componentType,
              version, libraryName);
    return properties;
}

std::shared_ptr<IComponent> ProcessManager::CreateFromStaticLibraries(const String& componentType,
                                                                      const String& componentName)
{
    std::vector<ILibrary*> libraries;
    {
        const std::lock_guard lock(mutex);
        for (const LoadedLibrary& loaded : staticLibraries)
        {
            libraries.push_back(loaded.library);
        }
    }
    for (ILibrary* library : libraries)
    {
        if (IComponentFactory& factory = library->GetComponentFactory(); factory.ContainsComponentType(componentType))
        {
            return factory.CreateComponent(application, componentType, componentName);
        }
    }
    return nullptr;
}

ComponentProperties ProcessManager::CreateStaticComponent(const String& componentType, const String& componentName)
{
    const auto component = CreateFromStaticLibraries(componentType, componentName);
    if (component == nullptr)
    {
        throw InvalidOperationException("{0}: Can't create component '{1}' of type {2}, because no registered factory "
                                        "method for this type exists.",
                                        "CreateStaticComponent", componentName, componentType);
    }
    const ComponentProperties properties{.StartOrder = component->GetStartOrder(),
                                         .Category = component->GetCategory()};
    componentProvider.AddComponent(component);
    log.Debug("Component '{0}' of type '{1}' from static library created.", componentName, componentType);
    return properties;
}

void ProcessManager::DestroyComponent(const String& componentName)
{
    ReleaseComponent(componentName, componentProvider.RemoveComponent(componentName));
    log.Debug("Component '{0}' destroyed.", componentName);
}

void ProcessManager::ReleaseComponent(const String& componentName, std::shared_ptr<IComponent> component) const
{
    const Breadcrumb breadcrumb("DestroyComponent", Breadcrumb::component, componentName);
    bool hasEnded = false;
    Guard("withdrawing services of component", componentName,
          [&] { hasEnded = Rsc::ServiceManager::UnpublishComponentServices(componentName); });
    if (!hasEnded)
    {
        log.Warning("Calls of services of component '{0}' have not ended: it stays in memory with its library.",
                    componentName);
        Abandon(std::move(component));
    }
    // Now, so that what its destructor does is known to be its own.
    component.reset();
}

ComponentProvider& ProcessManager::GetComponentProvider() noexcept
{
    return componentProvider;
}

bool ProcessManager::Guard(const char* what, const String& name, const Step& step) const
{
    try
    {
        step();
        return true;
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        log.Error("{0}", failure.Describe("Exception occurs while {0} '{1}': {2}",
                                          "Unspecified exception occurs while {0} '{1}'", what, name));
        return false;
    }
}

} // namespace Vela::System::Kiro::Internal::Pm
