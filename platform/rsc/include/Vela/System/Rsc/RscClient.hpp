#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <cstdint>
#include <memory>

namespace Vela::System::Rsc
{

/// One call, seen from the proxy.
struct RscCall
{
    const char* serviceName;
    std::uint16_t serviceNumber;
    std::uint16_t serviceGeneration;
    OperationInfo operation;
};

/// What a call that failed on its way throws: names operation, service and process.
[[nodiscard]] VELA_RSC_API RscException MakeCallFailure(const RscCall& call, const String& process, const String& why);

/// The exchange of one call over a connection: request out, response in. Ends with the object; a connection on which
/// the exchange was cut short is closed.
class VELA_RSC_API IRscTransaction
{
public:
    IRscTransaction() = default;
    IRscTransaction(const IRscTransaction&) = delete;
    IRscTransaction& operator=(const IRscTransaction&) = delete;
    virtual ~IRscTransaction();

    /// Where the arguments go.
    virtual RemotingWriter& BeginServiceInvocationRequest() = 0;
    /// Sends the request.
    virtual void EndServiceInvocationRequest() = 0;
    /// Waits for the response. Throws the service's exception when the call failed there.
    virtual RemotingReader& BeginServiceInvocationResponse() = 0;
    /// Checks that the response was read to its end.
    virtual void EndServiceInvocationResponse() = 0;
    /// The failure of a call whose response could not be read.
    [[nodiscard]] virtual RscException MakeMalformedResponse(const String& why) const = 0;
};

/// A service of this process in use: it is not destroyed before the lease ends.
class VELA_RSC_API IRscServiceLease
{
public:
    IRscServiceLease() = default;
    IRscServiceLease(const IRscServiceLease&) = delete;
    IRscServiceLease& operator=(const IRscServiceLease&) = delete;
    virtual ~IRscServiceLease();
    [[nodiscard]] virtual IRscService& GetService() = 0;
};

/// The way to the services of one process, shared by all proxies to it. Thread-safe; it may outlive the remoting
/// manager, its calls then fail.
class VELA_RSC_API RscClient
{
public:
    RscClient() = default;
    RscClient(const RscClient&) = delete;
    RscClient& operator=(const RscClient&) = delete;
    virtual ~RscClient();

    /// Name of the process that is called.
    [[nodiscard]] virtual const String& GetProcessName() const noexcept = 0;
    /// For services of this process: the service itself, authorised for the call. Null when calls go over a connection.
    virtual std::unique_ptr<IRscServiceLease> TryLease(const RscCall& call) = 0;
    /// Takes a connection for one call.
    virtual std::unique_ptr<IRscTransaction> BeginTransaction(const RscCall& call) = 0;
};

/// A service found: the client and the two numbers that its process gave it.
struct RscServiceBinding
{
    std::shared_ptr<RscClient> client;
    std::uint16_t serviceNumber = 0;
    std::uint16_t serviceGeneration = 0;
};

} // namespace Vela::System::Rsc
