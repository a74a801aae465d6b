#pragma once

#include "Client/Connector.hpp"
#include "Client/LocalClient.hpp"
#include "Client/ProcessClient.hpp"
#include "Server/ServiceRegistry.hpp"
#include "Transport/DirectoryWatch.hpp"
#include "Transport/RuntimeDirectory.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RscClient.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>
#include <Vela/System/Rsc/ServiceProvider.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

namespace Vela::System::Rsc
{

/// Finds services in this process and in others, and keeps the ways to the processes found. Thread-safe.
class ServiceFinder
{
public:
    using Clock = std::chrono::steady_clock;

    /// The process that looks.
    struct Process
    {
        String name;
        bool isMain;
        bool hasEndpoint;
    };

    ServiceFinder(Process ownProcess, const RscManagerOptions& options,
                  std::shared_ptr<const RuntimeDirectory> runtimeDirectory,
                  std::shared_ptr<ServiceRegistry> serviceRegistry);

    /// Tells this run of the process from every other one.
    [[nodiscard]] std::uint64_t GetInstanceId() const noexcept
    {
        return instanceId;
    }

    /// Finds a service, waiting for it up to `timeout` or until a wake descriptor is readable.
    /// @param why  set to the reason of the last failed attempt
    std::optional<RscServiceBinding> Bind(const ServiceProvider& provider, const String& interfaceName,
                                          std::chrono::milliseconds timeout, std::span<const int> wakeDescriptors,
                                          String& why);
    /// Whether the provider is this process, which then answers without a wait.
    [[nodiscard]] bool IsOwn(const ServiceProvider& provider) const;

    /// Closes the connections made so far.
    void CloseClients(bool abortCalls) noexcept;
    /// Ends all waits, and makes no more connections. Answers false when that happened before.
    bool Close() noexcept;

private:
    /// The kept watch, or another one when it is in use, for the time of a lookup that waits.
    class WatchLease;

    [[nodiscard]] static EndpointAddress GetAddress(const ServiceProvider& provider);
    std::optional<RscServiceBinding> TryBind(const EndpointAddress& address, const ServiceKey& key,
                                             const String& interfaceName, Clock::time_point deadline,
                                             std::span<const int> wakeDescriptors);
    std::optional<RscServiceBinding> BindOwn(const ServiceKey& key, const String& interfaceName,
                                             Clock::time_point deadline);
    std::shared_ptr<ProcessClient> GetClient(const EndpointAddress& address, Connection connection);

    const Process process;
    const std::uint64_t instanceId;
    const std::shared_ptr<const RuntimeDirectory> directory;
    const std::shared_ptr<ServiceRegistry> registry;
    const std::shared_ptr<LocalClient> localClient;
    const std::shared_ptr<const Connector> connector;
    /// Readable once the finder is closed.
    const Commons::UniqueFd closeEvent;

    std::mutex mutex;
    std::map<std::uint64_t, std::weak_ptr<ProcessClient>> clients;
    std::unique_ptr<DirectoryWatch> keptWatch;
    bool isClosed = false;
};

} // namespace Vela::System::Rsc
