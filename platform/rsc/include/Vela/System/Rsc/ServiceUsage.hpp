#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <tuple>
#include <vector>

namespace Vela::System::Rsc
{

/// A service that this process publishes.
struct PublishedService
{
    /// The component under whose name others find it; empty: the process.
    String provider;
    String serviceName;
    String interfaceName;
    /// The component in whose lifecycle step it was published; empty when it was published outside of one.
    String publisher;
};

/// A service of this or another process that somebody here has looked up and found.
struct UsedService
{
    /// The component in whose lifecycle step that happened; empty when it happened outside of one.
    String user;
    /// Where it was found.
    String process;
    /// The component by whose name it was found; empty: it is the process's.
    String provider;
    String serviceName;
};

/// Who publishes and who uses which service, as far as this process knows. Thread-safe.
class VELA_RSC_API ServiceUsage
{
public:
    ServiceUsage() = delete;

    /// The published services, in the order of their numbers; none without a remoting manager.
    static std::vector<PublishedService> GetPublished();
    /// All services that were found, by names; no more than the first 1,024, the next one is warned of. A service stays
    /// in the list when its proxy is gone or it was withdrawn.
    static std::vector<UsedService> GetUsed();
};

template <>
struct StructFields<PublishedService>
{
    static constexpr auto fields = std::tuple(&PublishedService::provider, &PublishedService::serviceName,
                                              &PublishedService::interfaceName, &PublishedService::publisher);
};

template <>
struct StructFields<UsedService>
{
    static constexpr auto fields =
        std::tuple(&UsedService::user, &UsedService::process, &UsedService::provider, &UsedService::serviceName);
};

} // namespace Vela::System::Rsc
