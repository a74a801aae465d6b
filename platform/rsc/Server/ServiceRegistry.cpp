#include "Server/ServiceRegistry.hpp"

#include <Vela/Exceptions.hpp>

#include <algorithm>
#include <limits>
#include <utility>

namespace Vela::System::Rsc
{

struct ServiceRegistry::Publication
{
    ServiceKey key;
    String interfaceName;
    String publisher;
    std::unique_ptr<IRscServiceStub> stub;
    std::size_t callsInProgress = 0;
};

ServiceRegistry::Lease::Lease(std::shared_ptr<ServiceRegistry> registryInUse,
                              std::shared_ptr<Publication> publicationInUse)
    : registry(std::move(registryInUse))
    , publication(std::move(publicationInUse))
{
}

ServiceRegistry::Lease::~Lease()
{
    if (publication != nullptr)
    {
        registry->Release(*publication);
    }
}

IRscServiceStub& ServiceRegistry::Lease::GetStub() const noexcept
{
    return *publication->stub;
}

const String& ServiceRegistry::Lease::GetInterfaceName() const noexcept
{
    return publication->interfaceName;
}

void ServiceRegistry::Publish(const ServiceKey& key, const String& interfaceName, std::unique_ptr<IRscServiceStub> stub,
                              const String& publisher)
{
    auto publication = std::make_shared<Publication>(Publication{key, interfaceName, publisher, std::move(stub), 0});
    const std::lock_guard lock(mutex);
    if (isClosed)
    {
        throw InvalidOperationException("Service '{0}' cannot be published: remoting is being closed.",
                                        key.serviceName);
    }
    if (std::any_of(places.begin(), places.end(),
                    [&key](const Place& place) { return place.publication && place.publication->key == key; }))
    {
        throw InvalidOperationException("Service '{0}' is already published by service provider '{1}'.",
                                        key.serviceName, key.provider);
    }
    auto place = std::find_if(places.begin(), places.end(), [](const Place& p) { return p.publication == nullptr; });
    if (place == places.end())
    {
        if (places.size() > std::numeric_limits<std::uint16_t>::max())
        {
            throw InvalidOperationException("Service '{0}' cannot be published: too many services.", key.serviceName);
        }
        place = places.emplace(places.end());
    }
    ++place->generation;
    place->publication = std::move(publication);
    changed.notify_all();
}

bool ServiceRegistry::Withdraw(const std::function<bool(const ServiceKey&)>& selects, Clock::time_point deadline)
{
    std::vector<std::shared_ptr<Publication>> withdrawn;
    std::vector<std::unique_ptr<IRscServiceStub>> unused;
    {
        std::unique_lock lock(mutex);
        for (Place& place : places)
        {
            if (place.publication != nullptr && selects(place.publication->key))
            {
                withdrawn.push_back(std::exchange(place.publication, nullptr));
            }
        }
        changed.wait_until(lock, deadline,
                           [&withdrawn]
                           {
                               return std::all_of(withdrawn.begin(), withdrawn.end(),
                                                  [](const auto& entry) { return entry->callsInProgress == 0; });
                           });
        for (const auto& entry : withdrawn)
        {
            if (entry->callsInProgress == 0)
            {
                // Out of the publication, which a thread that has just ended its call may still hold.
                unused.push_back(std::move(entry->stub));
            }
        }
    }
    return unused.size() == withdrawn.size();
}

std::optional<ServiceNumbers> ServiceRegistry::Find(const ServiceKey& key, const String& interfaceName,
                                                    Clock::time_point deadline)
{
    std::unique_lock lock(mutex);
    std::optional<ServiceNumbers> numbers;
    changed.wait_until(lock, deadline,
                       [&]
                       {
                           numbers = FindLocked(key, interfaceName);
                           return numbers.has_value() || isClosed;
                       });
    return numbers;
}

std::optional<ServiceNumbers> ServiceRegistry::FindLocked(const ServiceKey& key, const String& interfaceName) const
{
    for (std::size_t i = 0; i < places.size(); ++i)
    {
        const auto& publication = places[i].publication;
        if (publication == nullptr || !(publication->key == key))
        {
            continue;
        }
        if (publication->interfaceName != interfaceName)
        {
            throw InvalidOperationException("Service '{0}' has the interface '{1}', not '{2}'.", key.serviceName,
                                            publication->interfaceName, interfaceName);
        }
        return ServiceNumbers{static_cast<std::uint16_t>(i), places[i].generation};
    }
    return std::nullopt;
}

bool ServiceRegistry::HasProvider(const String& provider) const
{
    const std::lock_guard lock(mutex);
    return std::any_of(places.begin(), places.end(),
                       [&provider](const Place& place)
                       { return place.publication && place.publication->key.provider == provider; });
}

std::vector<PublishedService> ServiceRegistry::List() const
{
    std::vector<PublishedService> services;
    const std::lock_guard lock(mutex);
    for (const Place& place : places)
    {
        if (const auto& publication = place.publication)
        {
            services.push_back({.provider = publication->key.provider,
                                .serviceName = publication->key.serviceName,
                                .interfaceName = publication->interfaceName,
                                .publisher = publication->publisher});
        }
    }
    return services;
}

std::optional<ServiceRegistry::Lease> ServiceRegistry::Acquire(ServiceNumbers numbers)
{
    const std::lock_guard lock(mutex);
    if (isClosed || numbers.number >= places.size() || places[numbers.number].publication == nullptr ||
        places[numbers.number].generation != numbers.generation)
    {
        return std::nullopt;
    }
    const auto& publication = places[numbers.number].publication;
    ++publication->callsInProgress;
    ++callsInProgress;
    return Lease(shared_from_this(), publication);
}

void ServiceRegistry::Release(Publication& publication) noexcept
{
    const std::lock_guard lock(mutex);
    --publication.callsInProgress;
    --callsInProgress;
    if (publication.callsInProgress == 0 || callsInProgress == 0)
    {
        changed.notify_all();
    }
}

void ServiceRegistry::Close()
{
    const std::lock_guard lock(mutex);
    isClosed = true;
    changed.notify_all();
}

bool ServiceRegistry::WaitUntilUnused(Clock::time_point deadline)
{
    std::unique_lock lock(mutex);
    return changed.wait_until(lock, deadline, [this] { return callsInProgress == 0; });
}

} // namespace Vela::System::Rsc
