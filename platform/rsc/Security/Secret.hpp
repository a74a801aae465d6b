#pragma once

#include "Transport/Messages.hpp"

#include <array>
#include <chrono>
#include <cstdint>
#include <string_view>

namespace Vela::System::Rsc
{

class FrameChannel;
class RuntimeDirectory;

/// What a client of a TCP endpoint proves to know: a random key in a file of the runtime directory that only the
/// system's user can read. Both sides prove it, each for a number that the other one has just drawn and for the port,
/// so neither the key nor an answer that could be used again, or passed on to another endpoint, goes over the wire.
class Secret
{
public:
    /// Reads the file.
    /// @throws InvalidOperationException when others can read it; Exception
    static Secret Open(const RuntimeDirectory& directory);
    /// Reads the file, making it when it is missing. Once per process at a time.
    static Secret OpenOrCreate(const RuntimeDirectory& directory);

    /// The server's side of the proof.
    /// @throws TransportException
    void AuthenticateClient(FrameChannel& channel, std::chrono::milliseconds timeout) const;
    /// The client's side.
    /// @param port  the one that it connected to
    /// @throws TransportException
    void AuthenticateServer(FrameChannel& channel, std::uint16_t port, std::chrono::milliseconds timeout) const;

private:
    using Key = std::array<std::uint8_t, 32>;

    /// What a proof is about.
    struct Handshake
    {
        std::uint16_t port;
        Nonce serverNonce;
        Nonce clientNonce;
    };

    explicit Secret(const Key& secretKey);
    [[nodiscard]] Proof Prove(std::string_view label, const Handshake& handshake) const;
    [[nodiscard]] bool IsProof(const Proof& proof, std::string_view label, const Handshake& handshake) const;

    Key key;
};

} // namespace Vela::System::Rsc
