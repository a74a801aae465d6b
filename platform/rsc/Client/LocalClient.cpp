#include "Client/LocalClient.hpp"

#include "Security/CallerScope.hpp"

#include <Vela/Exceptions.hpp>

#include <unistd.h>

#include <utility>

namespace Vela::System::Rsc
{

namespace
{

/// Nobody calls in the name of whoever called this process: inside the lease the process itself is the caller.
class LocalLease final : public IRscServiceLease
{
public:
    LocalLease(ServiceRegistry::Lease registryLease, std::shared_ptr<const RscCaller> ownCaller,
               const char* operationName)
        : lease(std::move(registryLease))
        , caller(std::move(ownCaller))
        , scope(*caller)
    {
        lease.GetStub().Authorize(operationName);
    }

    [[nodiscard]] IRscService& GetService() override
    {
        return lease.GetStub().GetService();
    }

private:
    ServiceRegistry::Lease lease;
    const std::shared_ptr<const RscCaller> caller;
    const CallerScope scope;
};

} // namespace

LocalClient::LocalClient(std::shared_ptr<ServiceRegistry> serviceRegistry, String ownProcessName)
    : registry(std::move(serviceRegistry))
    , caller(std::make_shared<const RscCaller>(RscCaller{::geteuid(), ::getpid(), std::move(ownProcessName)}))
{
}

const String& LocalClient::GetProcessName() const noexcept
{
    return caller->processName;
}

std::unique_ptr<IRscServiceLease> LocalClient::TryLease(const RscCall& call)
{
    auto lease = registry->Acquire({call.serviceNumber, call.serviceGeneration});
    if (!lease)
    {
        throw MakeFailure(call);
    }
    return std::make_unique<LocalLease>(*std::move(lease), caller, call.operation.name);
}

std::unique_ptr<IRscTransaction> LocalClient::BeginTransaction(const RscCall& call)
{
    throw MakeFailure(call);
}

RscException LocalClient::MakeFailure(const RscCall& call) const
{
    return MakeCallFailure(call, caller->processName, "the service is not published any more");
}

} // namespace Vela::System::Rsc
