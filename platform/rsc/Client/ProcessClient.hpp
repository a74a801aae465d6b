#pragma once

#include "Client/Connector.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Rsc/RscClient.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Vela::System::Rsc
{

/// The way to one run of another process: a pool of connections, one per call in progress. Thread-safe.
///
/// Calls that one thread of the other process is to serve have a connection of their own.
class ProcessClient final : public RscClient, public std::enable_shared_from_this<ProcessClient>
{
public:
    /// A connection taken out of the pool.
    struct Taken
    {
        std::unique_ptr<Connection> connection;
        bool isReserved = false;
    };

    ProcessClient(const std::shared_ptr<const Connector>& processConnector, EndpointAddress endpointAddress,
                  WelcomeMessage processWelcome);

    [[nodiscard]] const String& GetProcessName() const noexcept override;
    std::unique_ptr<IRscServiceLease> TryLease(const RscCall& call) override;
    std::unique_ptr<IRscTransaction> BeginTransaction(const RscCall& call) override;

    /// Puts a fresh connection into the pool, or drops it when there is an idle one.
    void Add(std::unique_ptr<Connection> connection);
    /// Takes a connection, making it when none is idle.
    /// @throws TransportException
    Taken Take(bool isReserved);
    /// Gives a connection back, or drops it when it cannot be used any more.
    void Return(Taken taken, bool isUsable) noexcept;

    /// Closes all connections for good; those in use now, or when they are returned.
    void Close(bool abortCalls) noexcept;

    [[nodiscard]] const RscManagerOptions& GetOptions() const noexcept
    {
        return options;
    }

    [[nodiscard]] std::uint64_t GetInstanceId() const noexcept
    {
        return welcome.instanceId;
    }

private:
    std::unique_ptr<Connection> Connect();

    /// A proxy that outlives remoting keeps none of its descriptors.
    const std::weak_ptr<const Connector> connector;
    const RscManagerOptions options;
    const EndpointAddress address;
    const WelcomeMessage welcome;

    std::mutex mutex;
    std::vector<std::unique_ptr<Connection>> idle;
    std::unique_ptr<Connection> idleReserved;
    bool isReservedInUse = false;
    std::vector<FrameChannel*> inUse;
    /// Connections that are being made, idle or in use.
    std::size_t count = 0;
    bool isClosed = false;
};

} // namespace Vela::System::Rsc
