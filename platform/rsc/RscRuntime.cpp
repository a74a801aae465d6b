#include "RscRuntime.hpp"

#include "Security/AccessControl.hpp"
#include "Security/Secret.hpp"
#include "Transport/EndpointName.hpp"
#include "Transport/Socket.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <fmt/format.h>

#include <utility>

namespace Vela::System::Rsc
{

using Commons::Environment;

namespace
{

/// Time for a call that waited for another process to end after that wait was cut.
constexpr std::chrono::milliseconds abortTime{200};

struct InstanceSlot
{
    std::mutex mutex;
    std::shared_ptr<RscRuntime> instance;
    /// Services of a closed runtime in which calls went on; the last such call ends it.
    std::weak_ptr<ServiceRegistry> leftRegistry;
};

InstanceSlot& GetInstanceSlot()
{
    // Never destroyed: a thread may look a service up to the very end.
    static auto& slot = *new InstanceSlot;
    return slot;
}

/// Selects one service, or all of a provider when the service's name is empty.
auto Selector(const ServiceKey& key)
{
    return [&key](const ServiceKey& other)
    {
        return other.provider == key.provider && (key.serviceName.empty() || other.serviceName == key.serviceName);
    };
}

std::shared_ptr<const AccessControl> LoadAccessControl()
{
    const String path = Environment::GetSecuritySettingsPath();
    return path.empty() ? std::make_shared<const AccessControl>() : AccessControl::Load(path);
}

/// The TCP port that is really meant: 0 for none.
std::uint16_t ChoosePort(int requested)
{
    if (requested >= 0)
    {
        if (requested > 65535)
        {
            throw ArgumentException::ForParameter("port", fmt::format("{} is no TCP port", requested));
        }
        return static_cast<std::uint16_t>(requested);
    }
    return RscManager::FindGatewayPort();
}

} // namespace

RscRuntime::RscRuntime(const String& name, int requestedPort, const RscManagerOptions& managerOptions, Role processRole)
    : applicationName(name)
    , role(processRole)
    , options(managerOptions)
    , directory(std::make_shared<const RuntimeDirectory>(processRole == Role::Client ? RuntimeDirectory::Use::Look
                                                                                     : RuntimeDirectory::Use::Share))
    , socketFileName(GetSocketFileName(name))
    , accessControl(processRole == Role::Client ? nullptr : LoadAccessControl())
    , registry(std::make_shared<ServiceRegistry>())
    , finder(ServiceFinder::Process{name, processRole == Role::Main, processRole != Role::Client}, managerOptions,
             directory, registry)
{
    if (name.empty())
    {
        throw ArgumentNullException("applicationName");
    }
    if (role == Role::Client)
    {
        return;
    }
    if (role == Role::Main)
    {
        systemLock.emplace(*directory);
        directory->RemoveLeftovers();
    }
    OpenEndpoint(requestedPort);
    try
    {
        // Child processes find the directory even when it is relative or was chosen here.
        Environment::SetVariable(Environment::runtimeDirectoryName, directory->GetPath());
        log.Debug("Process '{0}' listens in runtime directory '{1}'.", applicationName, directory->GetPath());
    }
    catch (...)
    {
        // What never came to be is not destroyed.
        Close();
        throw;
    }
}

RscRuntime::~RscRuntime()
{
    Close();
}

void RscRuntime::OpenEndpoint(int requestedPort)
{
    auto data = std::make_shared<ServerData>();
    data->processName = applicationName;
    data->instanceId = finder.GetInstanceId();
    data->options = options;
    data->registry = registry;
    data->accessControl = accessControl;

    Commons::UniqueFd tcpSocket;
    if (const std::uint16_t tcpPort = ChoosePort(requestedPort); tcpPort != 0)
    {
        data->secret = std::make_shared<const Secret>(Secret::OpenOrCreate(*directory));
        tcpSocket = ListenOnPort(tcpPort);
        port = tcpPort;
    }
    Commons::UniqueFd unixSocket =
        directory->Listen(socketFileName, applicationName, accessControl->AdmitsOthers() ? 0666 : 0600);
    try
    {
        endpoint.emplace(std::move(data), std::move(unixSocket), std::move(tcpSocket));
        if (role == Role::Main)
        {
            directory->Link(mainProcessFileName, socketFileName);
        }
    }
    catch (...)
    {
        directory->Remove(socketFileName);
        throw;
    }
}

std::shared_ptr<RscRuntime> RscRuntime::TryGetInstance()
{
    InstanceSlot& slot = GetInstanceSlot();
    const std::lock_guard lock(slot.mutex);
    return slot.instance;
}

void RscRuntime::SetInstance(std::shared_ptr<RscRuntime> instance)
{
    InstanceSlot& slot = GetInstanceSlot();
    const std::lock_guard lock(slot.mutex);
    slot.instance.swap(instance);
}

void RscRuntime::Publish(const ServiceKey& key, IRscServiceFactory& factory)
{
    if (role == Role::Client)
    {
        throw InvalidOperationException("Process '{0}' is a client and publishes no services.", applicationName);
    }
    const auto security = options.serviceSecurity.find(factory.GetInterfaceName());
    if (security != options.serviceSecurity.end())
    {
        factory.SetSecurityEnabled(security->second);
    }
    auto stub = factory.CreateServiceStub(key.serviceName.c_str(), accessControl.get());
    const std::lock_guard lock(publishMutex);
    registry->Publish(key, factory.GetInterfaceName(), std::move(stub), ServiceUses::GetActingComponent());
    if (key.provider.empty() || linkedComponents.contains(key.provider))
    {
        return;
    }
    try
    {
        directory->Link(GetComponentFileName(key.provider), socketFileName);
        linkedComponents.insert(key.provider);
    }
    catch (...)
    {
        registry->Withdraw([&key](const ServiceKey& other) { return other == key; },
                           Clock::now() + options.closeTimeout);
        throw;
    }
}

bool RscRuntime::Unpublish(const ServiceKey& key)
{
    const bool hasDrained = registry->Withdraw(Selector(key), Clock::now() + options.closeTimeout);
    if (!hasDrained)
    {
        log.Warning("Service '{0}' of service provider '{1}' was withdrawn while a call of it is in progress.",
                    key.serviceName, key.provider);
    }
    const std::lock_guard lock(publishMutex);
    if (linkedComponents.contains(key.provider) && !registry->HasProvider(key.provider))
    {
        directory->Unlink(GetComponentFileName(key.provider), socketFileName);
        linkedComponents.erase(key.provider);
    }
    return hasDrained;
}

bool RscRuntime::UnpublishLeft(const ServiceKey& key)
{
    InstanceSlot& slot = GetInstanceSlot();
    std::shared_ptr<ServiceRegistry> left;
    {
        const std::lock_guard lock(slot.mutex);
        left = slot.leftRegistry.lock();
    }
    // Closing has waited for the calls already.
    return left == nullptr || left->Withdraw(Selector(key), Clock::now());
}

std::optional<RscServiceBinding> RscRuntime::Find(const ServiceProvider& provider, const String& interfaceName,
                                                  std::chrono::milliseconds timeout,
                                                  std::span<const int> wakeDescriptors, String& why)
{
    auto binding = finder.Bind(provider, interfaceName, timeout, wakeDescriptors, why);
    if (binding)
    {
        uses.Add(provider, interfaceName, binding->client->GetProcessName());
    }
    return binding;
}

std::vector<PublishedService> RscRuntime::GetPublished() const
{
    return registry->List();
}

std::vector<UsedService> RscRuntime::GetUsed() const
{
    return uses.List();
}

bool RscRuntime::Close() noexcept
{
    if (!finder.Close())
    {
        return true;
    }
    if (!endpoint)
    {
        finder.CloseClients(true);
        return true;
    }
    // From here on nothing is published, so no name appears behind those that go. They go before the endpoint, so that
    // nobody connects to one that is about to end.
    registry->Close();
    CloseEndpointNames();
    endpoint->StopAccepting();
    const auto deadline = Clock::now() + options.closeTimeout;
    if (endpoint->WaitForConnections(deadline))
    {
        registry->WaitUntilUnused(deadline);
    }
    // A call that itself waits for another process ends with its own call.
    finder.CloseClients(true);
    const std::size_t left = endpoint->CutConnections();
    const bool hasEnded = left == 0 && registry->WaitUntilUnused(Clock::now() + abortTime);
    if (hasEnded)
    {
        try
        {
            registry->Withdraw([](const ServiceKey&) { return true; }, Clock::now());
        }
        catch (...)
        {
            // They go with the registry.
            log.Warning("The services of process '{0}' could not be withdrawn: {1}", applicationName,
                        CaughtException::Current().GetText());
        }
    }
    else
    {
        log.Warning("Remoting of process '{0}' was closed while calls are still in progress.", applicationName);
        InstanceSlot& slot = GetInstanceSlot();
        const std::lock_guard lock(slot.mutex);
        slot.leftRegistry = registry;
    }
    if (systemLock)
    {
        RemoveLeftovers();
        systemLock.reset();
    }
    return hasEnded;
}

void RscRuntime::RemoveLeftovers() noexcept
{
    try
    {
        // Children that were killed could not remove their names themselves.
        directory->RemoveLeftovers();
    }
    catch (...)
    {
        log.Warning("{}", CaughtException::Current().Describe("Leftovers could not be removed: {0}",
                                                              "Leftovers could not be removed."));
    }
}

void RscRuntime::CloseEndpointNames() noexcept
{
    if (role == Role::Main)
    {
        directory->Unlink(mainProcessFileName, socketFileName);
        directory->Remove(secretFileName);
    }
    {
        const std::lock_guard lock(publishMutex);
        for (const String& component : std::exchange(linkedComponents, {}))
        {
            try
            {
                directory->Unlink(GetComponentFileName(component), socketFileName);
            }
            catch (...)
            {
                log.Warning("The name of component '{0}' could not be removed: {1}", component,
                            CaughtException::Current().GetText());
            }
        }
    }
    directory->Remove(socketFileName);
}

} // namespace Vela::System::Rsc
