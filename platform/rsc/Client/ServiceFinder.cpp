#include "Client/ServiceFinder.hpp"

#include "Transport/EndpointName.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <sys/eventfd.h>
#include <sys/random.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

/// Pause between attempts where nothing tells when the next one makes sense.
constexpr auto retryPause = 50ms;

std::uint64_t DrawInstanceId()
{
    std::uint64_t id = 0;
    if (::getrandom(&id, sizeof(id), 0) != static_cast<ssize_t>(sizeof(id)))
    {
        Commons::ThrowSystemError("getrandom");
    }
    return id;
}

} // namespace

class ServiceFinder::WatchLease
{
public:
    explicit WatchLease(ServiceFinder& serviceFinder)
        : finder(serviceFinder)
    {
        {
            const std::lock_guard lock(finder.mutex);
            watch = std::move(finder.keptWatch);
        }
        if (watch == nullptr)
        {
            watch = std::make_unique<DirectoryWatch>();
        }
        watch->Begin(*finder.directory);
    }

    WatchLease(const WatchLease&) = delete;
    WatchLease& operator=(const WatchLease&) = delete;

    ~WatchLease()
    {
        watch->End();
        const std::lock_guard lock(finder.mutex);
        if (finder.keptWatch == nullptr)
        {
            finder.keptWatch = std::move(watch);
        }
    }

    DirectoryWatch* operator->() const noexcept
    {
        return watch.get();
    }

private:
    ServiceFinder& finder;
    std::unique_ptr<DirectoryWatch> watch;
};

ServiceFinder::ServiceFinder(Process ownProcess, const RscManagerOptions& options,
                             std::shared_ptr<const RuntimeDirectory> runtimeDirectory,
                             std::shared_ptr<ServiceRegistry> serviceRegistry)
    : process(std::move(ownProcess))
    , instanceId(DrawInstanceId())
    , directory(std::move(runtimeDirectory))
    , registry(std::move(serviceRegistry))
    , localClient(std::make_shared<LocalClient>(registry, process.name))
    , connector(std::make_shared<const Connector>(directory, options, process.name))
    , closeEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!closeEvent.IsValid())
    {
        Commons::ThrowSystemError("eventfd");
    }
}

bool ServiceFinder::IsOwn(const ServiceProvider& provider) const
{
    switch (provider.GetKind())
    {
    case ServiceProvider::Kind::Process:
        return process.hasEndpoint && provider.GetName() == process.name;
    case ServiceProvider::Kind::MainProcess:
        return process.isMain;
    case ServiceProvider::Kind::Component:
        return registry->HasProvider(provider.GetName());
    case ServiceProvider::Kind::None:
    case ServiceProvider::Kind::LocalPort:
        break;
    }
    return false;
}

EndpointAddress ServiceFinder::GetAddress(const ServiceProvider& provider)
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

std::optional<RscServiceBinding> ServiceFinder::Bind(const ServiceProvider& provider, const String& interfaceName,
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
    std::optional<WatchLease> watch;
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
            // The process is about to end, to begin or to publish, or overloaded: no new file will tell when it is
            // worth another try.
            mustPause = true;
        }
        WaitResult result = WaitResult::Changed;
        if (mustPause)
        {
            result = WaitForInput(-1, std::min(deadline, Clock::now() + retryPause), wakes);
        }
        else if (watch)
        {
            result = (*watch)->WaitForFile(deadline, wakes);
        }
        else if (Clock::now() < deadline)
        {
            // Most lookups never come here. One more look, now that nothing is missed any longer.
            watch.emplace(*this);
        }
        if (result == WaitResult::Woken || Clock::now() >= deadline)
        {
            return std::nullopt;
        }
    }
}

std::optional<RscServiceBinding> ServiceFinder::TryBind(const EndpointAddress& address, const ServiceKey& key,
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
        throw TransportException(TransportFailure::Refused, "the process does not publish it");
    }
    return RscServiceBinding{GetClient(address, *std::move(connection)), numbers->number, numbers->generation};
}

std::optional<RscServiceBinding> ServiceFinder::BindOwn(const ServiceKey& key, const String& interfaceName,
                                                        Clock::time_point deadline)
{
    const auto numbers = registry->Find(key, interfaceName, deadline);
    if (!numbers)
    {
        return std::nullopt;
    }
    return RscServiceBinding{localClient, numbers->number, numbers->generation};
}

std::shared_ptr<ProcessClient> ServiceFinder::GetClient(const EndpointAddress& address, Connection connection)
{
    const std::lock_guard lock(mutex);
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

void ServiceFinder::CloseClients(bool abortCalls) noexcept
{
    const std::lock_guard lock(mutex);
    for (const auto& [id, weakClient] : clients)
    {
        if (const auto client = weakClient.lock())
        {
            client->Close(abortCalls);
        }
    }
    clients.clear();
}

bool ServiceFinder::Close() noexcept
{
    {
        const std::lock_guard lock(mutex);
        if (std::exchange(isClosed, true))
        {
            return false;
        }
    }
    static_cast<void>(::eventfd_write(closeEvent.Get(), 1));
    return true;
}

} // namespace Vela::System::Rsc
