#pragma once

#include <Vela/Exceptions.hpp>

#include <cstdint>
#include <utility>

namespace Vela::System::Rsc
{

/// What went wrong on a connection, for those who act on it.
enum class TransportFailure : std::uint8_t
{
    /// The other side closed the connection.
    Closed,
    TimedOut,
    /// The other side does not speak the protocol.
    Malformed,
    /// The other side does not want us, or we do not trust it.
    Refused,
    /// The system's own failure.
    System,
};

/// A connection that cannot be used any more.
class TransportException : public RscException
{
public:
    TransportException(TransportFailure transportFailure, String message)
        : RscException(std::move(message))
        , failure(transportFailure)
    {
    }

    [[nodiscard]] TransportFailure GetFailure() const noexcept
    {
        return failure;
    }

private:
    TransportFailure failure;
};

} // namespace Vela::System::Rsc
