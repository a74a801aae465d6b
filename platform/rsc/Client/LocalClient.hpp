#pragma once

#include "Server/ServiceRegistry.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>
#include <Vela/System/Rsc/RscClient.hpp>

#include <memory>

namespace Vela::System::Rsc
{

/// The way to the services of this process: straight to the implementation, with the same authorisation and the same
/// wait before a service is destroyed as for calls from outside.
class LocalClient final : public RscClient
{
public:
    LocalClient(std::shared_ptr<ServiceRegistry> serviceRegistry, String ownProcessName);

    [[nodiscard]] const String& GetProcessName() const noexcept override;
    std::unique_ptr<IRscServiceLease> TryLease(const RscCall& call) override;
    std::unique_ptr<IRscTransaction> BeginTransaction(const RscCall& call) override;

private:
    [[nodiscard]] RscException MakeFailure(const RscCall& call) const;

    const std::shared_ptr<ServiceRegistry> registry;
    const std::shared_ptr<const RscCaller> caller;
};

} // namespace Vela::System::Rsc
