#include "RscRuntime.hpp"

#include "Security/AccessControl.hpp"
#include "Security/Secret.hpp"
#include "Transport/DirectoryWatch.hpp"
#include "Transport/EndpointName.hpp"
#include "Transport/Socket.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <fmt/format.h>
#include <sys/eventfd.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;
using Commons::Environment;

namespace
{

/// Pause between attempts where nothing tells when the next one makes sense.
constexpr auto retryPause = 50ms;

struct InstanceSlot
{
    std::mutex mutex;
    std::shared_ptr<RscRuntime> instance;
};

InstanceSlot& GetInstanceSlot()
{
    // Never destroyed: a thread may look a service up to the very end.
    static auto& slot = *new InstanceSlot;
    return slot;
}

std::uint64_t DrawInstanceId()
{
    std::uint64_t id = 0;
    if (::getrandom(&id, sizeof(id), 0) != static_cast<ssize_t>(sizeof(id)))
    {
        Commons::ThrowSystemError("getrandom");
    }
    return id;
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
    String text;
    if (!Environment::GetVariableValue(RscManager::gatewayPortVariable, text) || text.empty())
    {
        return 0;
    }
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size())
    {
        throw InvalidOperationException("Environment variable '{0}' has the value '{1}', which is no TCP port.",
                                        RscManager::gatewayPortVariable, text);
    }
    return port;
}

} // namespace

RscRuntime::RscRuntime(const String& name, int requestedPort, const RscManagerOptions& managerOptions, Role processRole)
    : applicationName(name)
    , role(processRole)
    , options(managerOptions)
    , instanceId(DrawInstanceId())
    , directory(std::make_shared<const RuntimeDirectory>(processRole == Role::Client ? RuntimeDirectory::Use::Look
                                                                                     : RuntimeDirectory::Use::Share))
    , socketFileName(GetSocketFileName(name))
    , accessControl(processRole == Role::Client ? nullptr : LoadAccessControl())
    , registry(std::make_shared<ServiceRegistry>())
    , localClient(std::make_shared<LocalClient>(registry, name))
    , connector(std::make_shared<const Connector>(directory, managerOptions, name))
    , closeEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
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
    // Child processes find the directory even when it is relative or was chosen here.
    Environment::SetVariable(Environment::runtimeDirectoryName, directory->GetPath());
    log.Debug("Process '{0}' listens in runtime directory '{1}'.", applicationName, directory->GetPath());
}

RscRuntime::~RscRuntime()
{
    Close();
}

void RscRuntime::OpenEndpoint(int requestedPort)
{
    auto data = std::make_shared<ServerData>();
    data->processName = applicationName;
    data->instanceId = instanceId;
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
    registry->Publish(key, factory.GetInterfaceName(), std::move(stub));
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
    const bool hasDrained = registry->Withdraw(
        [&key](const ServiceKey& other)
        { return other.provider == key.provider && (key.serviceName.empty() || other.serviceName == key.serviceName); },
        Clock::now() + options.closeTimeout);
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

bool RscRuntime::IsOwn(const ServiceProvider& provider) const
{
    switch (provider.GetKind())
    {
    case ServiceProvider::Kind::Process:
        return role != Role::Client && provider.GetName() == applicationName;
    case ServiceProvider::Kind::MainProcess:
        return role == Role::Main;
    case ServiceProvider::Kind::Component:
        return registry->HasProvider(provider.GetName());
    case ServiceProvider::Kind::None:
    case ServiceProvider::Kind::LocalPort:
        break;
    }
    return false;
}

EndpointAddress RscRuntime::GetAddress(const ServiceProvider& provider) const
{
    switch (provider.GetKind())
    {
    case ServiceProvider::Kind::Process:
        return {GetSocketFileName(provider.GetName()), 0};
    case ServiceProvider::Kind::MainProcess:
        return {mainProcessFileName, 0};
    case ServiceProvider::Kind::Component:
        return {GetComponentFileName(provider.GetName()), 0};
    case ServiceProvider::Kind::LocalPort:
        return {{}, provider.GetPort()};
    case ServiceProvider::Kind::None:
        break;
    }
    throw ArgumentException("Service does not specify a service provider");
}

std::optional<RscServiceBinding> RscRuntime::Bind(const ServiceProvider& provider, const String& interfaceName,
                                                  std::chrono::milliseconds timeout,
                                                  std::span<const int> wakeDescriptors, String& why)
{
    const EndpointAddress address = GetAddress(provider);
    const ServiceKey key{provider.GetKind() == ServiceProvider::Kind::Component ? provider.GetName() : String(),
                         provider.GetServiceName().empty() ? interfaceName : provider.GetServiceName()};
    const auto deadline = Clock::now() + timeout;
    if (IsOwn(provider))
    {
        return BindOwn(key, interfaceName, deadline);
    }

    std::vector<int> wakes(wakeDescriptors.begin(), wakeDescriptors.end());
    wakes.push_back(closeEvent.Get());
    DirectoryWatch watch(*directory);
    for (;;)
    {
        bool mustPause = address.port != 0;
        try
        {
            if (auto binding = TryBind(address, key, interfaceName, deadline, wakes))
            {
                return binding;
            }
            why = "it is not there";
        }
        catch (const TransportException& exception)
        {
            why = exception.GetMessage();
            // The process is about to end, to begin or overloaded: no new file will tell when it is worth another try.
            mustPause = true;
        }
        const auto nextTry = mustPause ? std::min(deadline, Clock::now() + retryPause) : deadline;
        const WaitResult result = mustPause ? WaitForInput(-1, nextTry, wakes) : watch.WaitForFile(deadline, wakes);
        if (result == WaitResult::Woken || Clock::now() >= deadline)
        {
            return std::nullopt;
        }
    }
}

std::optional<RscServiceBinding> RscRuntime::TryBind(const EndpointAddress& address, const ServiceKey& key,
                                                     const String& interfaceName, Clock::time_point deadline,
                                                     std::span<const int> wakeDescriptors)
{
    auto connection = connector->Connect(address, deadline, wakeDescriptors);
    if (!connection)
    {
        return std::nullopt;
    }
    if (connection->welcome.instanceId == instanceId)
    {
        return BindOwn(key, interfaceName, deadline);
    }
    const auto numbers = connector->Open(*connection, key, interfaceName, deadline, wakeDescriptors);
    if (!numbers)
    {
        return std::nullopt;
    }
    return RscServiceBinding{GetClient(address, *std::move(connection)), numbers->number, numbers->generation};
}

std::optional<RscServiceBinding> RscRuntime::BindOwn(const ServiceKey& key, const String& interfaceName,
                                                     Clock::time_point deadline)
{
    const auto numbers = registry->Find(key, interfaceName, deadline);
    if (!numbers)
    {
        return std::nullopt;
    }
    return RscServiceBinding{localClient, numbers->number, numbers->generation};
}

std::shared_ptr<ProcessClient> RscRuntime::GetClient(const EndpointAddress& address, Connection connection)
{
    const std::lock_guard lock(clientsMutex);
    if (isClosed)
    {
        throw TransportException(TransportFailure::Closed, "remoting was closed");
    }
    std::erase_if(clients, [](const auto& entry) { return entry.second.expired(); });
    auto& known = clients[connection.welcome.instanceId];
    auto client = known.lock();
    if (client == nullptr)
    {
        // Through the process's own file: the link by which it was found may go earlier than the process.
        const EndpointAddress processAddress =
            address.port != 0 ? address : EndpointAddress{GetSocketFileName(connection.welcome.processName), 0};
        client = std::make_shared<ProcessClient>(connector, processAddress, connection.welcome);
        known = client;
    }
    client->Add(std::make_unique<Connection>(std::move(connection)));
    return client;
}

void RscRuntime::CloseClients(bool abortCalls) noexcept
{
    const std::lock_guard lock(clientsMutex);
    for (const auto& [id, weakClient] : clients)
    {
        if (const auto client = weakClient.lock())
        {
            client->Close(abortCalls);
        }
    }
    clients.clear();
}

bool RscRuntime::Close() noexcept
{
    {
        const std::lock_guard lock(clientsMutex);
        if (isClosed)
        {
            return true;
        }
        isClosed = true;
    }
    const std::uint64_t one = 1;
    static_cast<void>(::write(closeEvent.Get(), &one, sizeof(one)));

    if (!endpoint)
    {
        CloseClients(true);
        return true;
    }
    // The names go first, so that nobody connects to an endpoint that is about to end.
    CloseEndpointNames();
    registry->Close();
    endpoint->StopAccepting();
    const auto deadline = Clock::now() + options.closeTimeout;
    bool hasEnded = endpoint->WaitForConnections(deadline) && registry->WaitUntilUnused(deadline);
    // A call that itself waits for another process ends with its own call.
    CloseClients(true);
    const std::size_t left = endpoint->CutConnections();
    hasEnded = left == 0 && registry->WaitUntilUnused(Clock::now());
    if (hasEnded)
    {
        registry->Withdraw([](const ServiceKey&) { return true; }, Clock::now());
    }
    else
    {
        log.Warning("Remoting of process '{0}' was closed while calls are still in progress.", applicationName);
    }
    systemLock.reset();
    return hasEnded;
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
            directory->Unlink(GetComponentFileName(component), socketFileName);
        }
    }
    directory->Remove(socketFileName);
}

} // namespace Vela::System::Rsc
