#pragma once

#include <Vela/CaughtException.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>
#include <Vela/System/Rsc/RscServerContext.hpp>

namespace Vela::System::Rsc
{

/// How a failed call ends: with remoting's own code, or with an exception of the service.
struct Failure
{
    RscErrorCode code;
    CaughtException exception;
};

/// Writes a failed response. Texts that are too long are cut, so that it always fits.
void WriteFailure(RemotingWriter& writer, RscErrorCode code, const CaughtException& exception);
/// Reads what stands behind a failed confirmation.
Failure ReadFailure(RemotingReader& reader);

} // namespace Vela::System::Rsc
