#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/IRscServiceStub.hpp>
#include <Vela/System/Rsc/ServiceUsage.hpp>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Vela::System::Rsc
{

/// Names a service inside a process.
struct ServiceKey
{
    /// Empty: the process itself; otherwise a component.
    String provider;
    String serviceName;
    bool operator==(const ServiceKey&) const = default;
};

/// The two numbers under which a published service is called: a place in the table, and how often that place was given
/// away, so that a call never reaches a successor.
struct ServiceNumbers
{
    std::uint16_t number = 0;
    std::uint16_t generation = 0;
};

/// The published services of a process. Thread-safe; no lock is held while a service's code runs.
class ServiceRegistry : public std::enable_shared_from_this<ServiceRegistry>
{
    struct Publication;

public:
    using Clock = std::chrono::steady_clock;

    /// A service in use; it is destroyed after the last lease.
    class Lease
    {
    public:
        Lease(std::shared_ptr<ServiceRegistry> registryInUse, std::shared_ptr<Publication> publicationInUse);
        Lease(Lease&&) noexcept = default;
        Lease& operator=(Lease&&) = delete;
        ~Lease();

        [[nodiscard]] IRscServiceStub& GetStub() const noexcept;
        [[nodiscard]] const String& GetInterfaceName() const noexcept;

    private:
        std::shared_ptr<ServiceRegistry> registry;
        std::shared_ptr<Publication> publication;
    };

    /// @param publisher  the component that does it; empty: none
    /// @throws InvalidOperationException when the key is taken, the table is full or the registry closed
    void Publish(const ServiceKey& key, const String& interfaceName, std::unique_ptr<IRscServiceStub> stub,
                 const String& publisher = {});
    /// Withdraws all services that `selects` selects and waits for their calls until the deadline.
    /// @return whether all calls have ended
    bool Withdraw(const std::function<bool(const ServiceKey&)>& selects, Clock::time_point deadline);

    /// Finds a service, waiting for its publication until the deadline.
    /// @throws InvalidOperationException when the service has another interface
    std::optional<ServiceNumbers> Find(const ServiceKey& key, const String& interfaceName, Clock::time_point deadline);
    [[nodiscard]] bool HasProvider(const String& provider) const;
    [[nodiscard]] std::vector<PublishedService> List() const;

    /// Takes a service into use; nothing when it is not published any more.
    std::optional<Lease> Acquire(ServiceNumbers numbers);

    /// Ends all waits and refuses new publications and new calls.
    void Close();
    /// Waits until no service is in use.
    bool WaitUntilUnused(Clock::time_point deadline);

private:
    struct Place
    {
        std::shared_ptr<Publication> publication;
        std::uint16_t generation = 0;
    };

    [[nodiscard]] std::optional<ServiceNumbers> FindLocked(const ServiceKey& key, const String& interfaceName) const;
    void Release(Publication& publication) noexcept;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Place> places;
    std::size_t callsInProgress = 0;
    bool isClosed = false;
};

} // namespace Vela::System::Rsc
