#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Vela::System::Rsc
{

class FrameChannel;
class RuntimeDirectory;

/// What a client of a TCP endpoint proves to know: a random key in a file of the runtime directory that only the
/// system's user can read. Both sides prove it, each for a number that the other one has just drawn, so neither the key
/// nor an answer that could be used again goes over the wire.
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
    /// @throws TransportException
    void AuthenticateServer(FrameChannel& channel, std::chrono::milliseconds timeout) const;

private:
    using Key = std::array<std::byte, 16>;
    explicit Secret(const Key& secretKey);
    [[nodiscard]] std::uint64_t Prove(std::uint64_t role, std::uint64_t serverNumber, std::uint64_t clientNumber) const;

    Key key;
};

} // namespace Vela::System::Rsc
