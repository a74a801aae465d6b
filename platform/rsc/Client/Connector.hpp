#pragma once

#include "Server/ServiceRegistry.hpp"
#include "Transport/FrameChannel.hpp"
#include "Transport/Messages.hpp"
#include "Transport/RuntimeDirectory.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace Vela::System::Rsc
{

/// Where a process listens: at a file of the runtime directory, or at a TCP port.
struct EndpointAddress
{
    String fileName;
    std::uint16_t port = 0;
};

/// A connection whose both ends know each other.
struct Connection
{
    std::unique_ptr<FrameChannel> channel;
    WelcomeMessage welcome;
    std::uint32_t lastRequest = 0;
};

/// Makes connections to other processes. Thread-safe.
class Connector
{
public:
    using Clock = std::chrono::steady_clock;

    Connector(std::shared_ptr<const RuntimeDirectory> runtimeDirectory, RscManagerOptions managerOptions,
              String ownProcessName);

    /// Nothing when nobody listens.
    /// @throws TransportException when the other side refuses or does not answer in time, or a wake descriptor becomes
    ///         readable meanwhile (TimedOut)
    [[nodiscard]] std::optional<Connection> Connect(const EndpointAddress& address, Clock::time_point deadline,
                                                    std::span<const int> wakeDescriptors) const;
    /// Asks for a service's numbers, letting the other process wait for its publication until the deadline.
    /// @throws TransportException as above; the exception of the other process when it has another idea of the service
    [[nodiscard]] std::optional<ServiceNumbers> Open(Connection& connection, const ServiceKey& key,
                                                     const String& interfaceName, Clock::time_point deadline,
                                                     std::span<const int> wakeDescriptors) const;

    [[nodiscard]] const RscManagerOptions& GetOptions() const noexcept
    {
        return options;
    }

    [[nodiscard]] const RuntimeDirectory& GetDirectory() const noexcept
    {
        return *directory;
    }

private:
    const std::shared_ptr<const RuntimeDirectory> directory;
    const RscManagerOptions options;
    const String processName;
};

} // namespace Vela::System::Rsc
