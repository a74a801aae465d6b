#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>

#include <chrono>
#include <cstddef>
#include <map>

namespace Vela::System::Rsc
{

/// The limits and switches of a process's remoting.
struct VELA_RSC_API RscManagerOptions
{
    /// Bytes of a request and of a response.
    std::size_t maxRequestSize = std::size_t{1024} * 1024;
    std::size_t maxResponseSize = std::size_t{16} * 1024 * 1024;
    /// Connections that this process serves at a time, each with a thread of its own. Half of them are for processes of
    /// the system's own user alone.
    std::size_t maxConnections = 128;
    /// Connections that this process opens to one other process, and so the depth of calls that nest between the two.
    /// It serves twice as many of one process, of another user, and of all TCP clients together.
    std::size_t maxConnectionsPerProcess = 16;
    /// How long a call waits for its answer, operations without a deadline excepted.
    std::chrono::milliseconds callTimeout{10'000};
    /// How long a service lookup waits for the other process.
    std::chrono::milliseconds connectTimeout{3'000};
    /// How long withdrawing a service and closing wait for calls in progress.
    std::chrono::milliseconds closeTimeout{2'000};
    /// How long a client may take to introduce itself, to send the rest of a request that it has begun, and to take an
    /// answer.
    std::chrono::milliseconds frameTimeout{5'000};
    /// By interface: whether the calls of its services are authorised one by one. Others are as their factories say.
    std::map<String, bool> serviceSecurity;

    /// Reads an Rsc.settings file. An empty path, or the default file when it is missing, gives the defaults.
    /// @throws NotExistException when another file is missing; XmlException when it is malformed
    static RscManagerOptions Load(const String& path);

    static constexpr const char* defaultFileName = "Rsc.settings";
};

} // namespace Vela::System::Rsc
