#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>

namespace Vela::System::Rsc
{

/// Drawn anew for each connection, so that a proof is of no use twice.
using Nonce = std::array<std::uint8_t, 16>;
/// HMAC-SHA256.
using Proof = std::array<std::uint8_t, 32>;

/// What a TCP endpoint says first.
struct ChallengeMessage
{
    Nonce serverNonce{};
};

/// What the client answers.
struct ClientProofMessage
{
    Nonce clientNonce{};
    Proof proof{};
};

/// What the server proves in turn.
struct ServerProofMessage
{
    Proof proof{};
};

/// What a client says first: who it is.
struct HelloMessage
{
    String processName;
};

/// What the server answers.
struct WelcomeMessage
{
    String processName;
    /// Tells this run of the process from every other one.
    std::uint64_t instanceId = 0;
};

/// Asks for the numbers of a service.
struct OpenMessage
{
    String provider;
    String serviceName;
    String interfaceName;
    /// How long the server may wait for the service to be published.
    std::uint32_t waitMilliseconds = 0;
};

/// The answer to OpenMessage, behind the confirmation.
struct OpenedMessage
{
    std::uint16_t serviceNumber = 0;
    std::uint16_t serviceGeneration = 0;
};

/// Bound for all frames but calls and their responses.
inline constexpr std::size_t maxControlPayload = 65536;

template <>
struct StructFields<ChallengeMessage>
{
    static constexpr auto fields = std::tuple(&ChallengeMessage::serverNonce);
};

template <>
struct StructFields<ClientProofMessage>
{
    static constexpr auto fields = std::tuple(&ClientProofMessage::clientNonce, &ClientProofMessage::proof);
};

template <>
struct StructFields<ServerProofMessage>
{
    static constexpr auto fields = std::tuple(&ServerProofMessage::proof);
};

template <>
struct StructFields<HelloMessage>
{
    static constexpr auto fields = std::tuple(&HelloMessage::processName);
};

template <>
struct StructFields<WelcomeMessage>
{
    static constexpr auto fields = std::tuple(&WelcomeMessage::processName, &WelcomeMessage::instanceId);
};

template <>
struct StructFields<OpenMessage>
{
    static constexpr auto fields = std::tuple(&OpenMessage::provider, &OpenMessage::serviceName,
                                              &OpenMessage::interfaceName, &OpenMessage::waitMilliseconds);
};

template <>
struct StructFields<OpenedMessage>
{
    static constexpr auto fields = std::tuple(&OpenedMessage::serviceNumber, &OpenedMessage::serviceGeneration);
};

} // namespace Vela::System::Rsc
