#pragma once

#include "Client/ServiceFinder.hpp"
#include "Client/ServiceUses.hpp"
#include "Server/Endpoint.hpp"
#include "Server/ServiceRegistry.hpp"
#include "Transport/RuntimeDirectory.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace Vela::System::Rsc
{

class AccessControl;

/// All that a process's remoting consists of, behind RscManager and ServiceManager.
///
/// It is held by a shared pointer, so that a thread which is looking a service up keeps it in memory while another one
/// closes it. Thread-safe.
class RscRuntime : private Commons::Diagnostics::Loggable<RscRuntime>
{
public:
    using Clock = std::chrono::steady_clock;

    enum class Role
    {
        Main,
        Child,
        /// Calls others and publishes nothing.
        Client,
    };

    RscRuntime(const String& name, int requestedPort, const RscManagerOptions& managerOptions, Role processRole);
    RscRuntime(const RscRuntime&) = delete;
    RscRuntime& operator=(const RscRuntime&) = delete;
    ~RscRuntime();

    /// The process's remoting; null before it is opened and after it is closed.
    static std::shared_ptr<RscRuntime> TryGetInstance();
    static void SetInstance(std::shared_ptr<RscRuntime> instance);

    void Publish(const ServiceKey& key, IRscServiceFactory& factory);
    /// Withdraws one service, or all of a provider when the service's name is empty.
    bool Unpublish(const ServiceKey& key);
    /// The same after the process's remoting was closed, for services whose calls outlived it.
    static bool UnpublishLeft(const ServiceKey& key);

    [[nodiscard]] ServiceFinder& GetFinder() noexcept
    {
        return finder;
    }

    /// As the finder, and remembers what was found.
    std::optional<RscServiceBinding> Find(const ServiceProvider& provider, const String& interfaceName,
                                          std::chrono::milliseconds timeout, std::span<const int> wakeDescriptors,
                                          String& why);
    [[nodiscard]] std::vector<PublishedService> GetPublished() const;
    [[nodiscard]] std::vector<UsedService> GetUsed() const;

    /// Closes everything; the second call does nothing.
    /// @return false when a call is still running
    bool Close() noexcept;

    [[nodiscard]] int GetPort() const noexcept
    {
        return port;
    }

    [[nodiscard]] const RscManagerOptions& GetOptions() const noexcept
    {
        return options;
    }

private:
    void OpenEndpoint(int requestedPort);
    void RemoveLeftovers() noexcept;
    void CloseEndpointNames() noexcept;

    const String applicationName;
    const Role role;
    const RscManagerOptions options;
    const std::shared_ptr<const RuntimeDirectory> directory;
    std::optional<SystemLock> systemLock;
    const String socketFileName;
    const std::shared_ptr<const AccessControl> accessControl;
    const std::shared_ptr<ServiceRegistry> registry;
    ServiceFinder finder;
    ServiceUses uses;
    int port = 0;
    std::optional<Endpoint> endpoint;

    /// Publishing and withdrawing of components' services, so that a component's link is there as long as any of them.
    std::mutex publishMutex;
    std::set<String> linkedComponents;
};

} // namespace Vela::System::Rsc
