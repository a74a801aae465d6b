#pragma once

#include <Vela/CaughtException.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <cstddef>
#include <cstdint>

namespace Vela::System::Rsc
{

/// Remoting's own failures, as numbers on the wire.
enum class RscErrorCode : std::uint32_t
{
    /// Not a failure of remoting: the exception of the service follows.
    None = 0,
    /// The service is not published, or not any more.
    UnknownService = 0x40000001,
    /// The arguments do not fit the operation.
    MalformedRequest = 0x40000002,
    /// The service has no operation of that number (1073741827).
    UnknownOperation = 0x40000003,
    /// The answer is larger than a response may be.
    ResponseTooLarge = 0x40000004,
    /// The caller may not call the service.
    AccessDenied = 0x40000005,
};

/// One call, seen from the stub: where its arguments come from and its answer goes to.
class VELA_RSC_API RscServerContext
{
public:
    RscServerContext(RemotingReader& request, RemotingWriter& response);
    RscServerContext(const RscServerContext&) = delete;
    RscServerContext& operator=(const RscServerContext&) = delete;

    [[nodiscard]] RemotingReader& GetReader() noexcept
    {
        return reader;
    }

    [[nodiscard]] RemotingWriter& GetWriter() noexcept
    {
        return writer;
    }

    /// Ends the call with a failure of remoting in place of whatever answer was written.
    /// @param message  null: the caller's own text for the code
    void AbortRequest(RscErrorCode code, const char* message);
    /// Ends the call with an exception of the service, in place of whatever answer was written.
    void FailRequest(const CaughtException& failure);

private:
    RemotingReader& reader;
    RemotingWriter& writer;
    std::size_t start;
};

} // namespace Vela::System::Rsc
