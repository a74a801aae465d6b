#include "Security/Secret.hpp"

#include "Transport/EndpointName.hpp"
#include "Transport/FrameChannel.hpp"
#include "Transport/Messages.hpp"
#include "Transport/RuntimeDirectory.hpp"
#include "Transport/Socket.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <fcntl.h>
#include <fmt/format.h>
#include <nettle/hmac.h>
#include <nettle/memops.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Vela::System::Rsc
{

namespace
{

/// Each side proves something else, so that neither can send the other's proof back.
constexpr std::string_view clientLabel = "client";
constexpr std::string_view serverLabel = "server";

template <typename T>
T DrawRandom()
{
    T value{};
    if (::getrandom(&value, sizeof(value), 0) != static_cast<ssize_t>(sizeof(value)))
    {
        Commons::ThrowSystemError("getrandom");
    }
    return value;
}

template <typename Message>
void SendMessage(FrameChannel& channel, FrameKind kind, const Message& message)
{
    WriteRemote(channel.BeginFrame(maxControlPayload), message);
    channel.Send(kind, 0);
}

template <typename Message>
Message ReadMessage(const Frame& frame)
{
    Message message;
    RemotingReader reader(frame.payload);
    ReadRemote(reader, message);
    reader.ReadEnd();
    return message;
}

} // namespace

Secret::Secret(const Key& secretKey)
    : key(secretKey)
{
}

Secret Secret::OpenOrCreate(const RuntimeDirectory& directory)
{
    // A new secret is written beside its place and linked into it whole; whoever comes second takes the first one's.
    const String temporaryName = fmt::format("new-secret-{}", ::getpid());
    const Commons::UniqueFd created(::openat(directory.GetDescriptor(), temporaryName.c_str(),
                                             O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    const auto newKey = DrawRandom<Key>();
    const bool isWritten = created.IsValid() &&
                           ::write(created.Get(), newKey.data(), newKey.size()) == static_cast<ssize_t>(newKey.size());
    const bool isLinked = isWritten && (::linkat(directory.GetDescriptor(), temporaryName.c_str(),
                                                 directory.GetDescriptor(), secretFileName, 0) == 0 ||
                                        errno == EEXIST);
    const int error = errno;
    directory.Remove(temporaryName);
    if (!isLinked)
    {
        Commons::ThrowSystemError(fmt::format("Cannot make the secret of runtime directory '{}'", directory.GetPath()),
                                  error);
    }
    return Open(directory);
}

Secret Secret::Open(const RuntimeDirectory& directory)
{
    const Commons::UniqueFd file(
        ::openat(directory.GetDescriptor(), secretFileName, O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    struct stat status
    {
    };
    Key key{};
    if (!file.IsValid() || ::fstat(file.Get(), &status) != 0 ||
        ::read(file.Get(), key.data(), key.size()) != static_cast<ssize_t>(key.size()))
    {
        Commons::ThrowSystemError(fmt::format("Cannot read the secret of runtime directory '{}'", directory.GetPath()));
    }
    if (status.st_uid != ::geteuid() || (status.st_mode & 077U) != 0)
    {
        throw InvalidOperationException("The secret of runtime directory '{}' can be read by others.",
                                        directory.GetPath());
    }
    return Secret(key);
}

void Secret::AuthenticateClient(FrameChannel& channel, std::chrono::milliseconds timeout) const
{
    Handshake handshake{GetSocketPort(channel.GetDescriptor()), DrawRandom<Nonce>(), {}};
    SendMessage(channel, FrameKind::Challenge, ChallengeMessage{handshake.serverNonce});
    const Frame frame = channel.Receive(maxControlPayload, timeout);
    if (frame.kind != FrameKind::Proof)
    {
        throw TransportException(TransportFailure::Refused, "no proof of the system's secret");
    }
    const auto answer = ReadMessage<ClientProofMessage>(frame);
    handshake.clientNonce = answer.clientNonce;
    if (!IsProof(answer.proof, clientLabel, handshake))
    {
        channel.SendText(FrameKind::Refusal, 0, "wrong proof of the system's secret");
        throw TransportException(TransportFailure::Refused, "wrong proof of the system's secret");
    }
    SendMessage(channel, FrameKind::Proof, ServerProofMessage{Prove(serverLabel, handshake)});
}

void Secret::AuthenticateServer(FrameChannel& channel, std::uint16_t port, std::chrono::milliseconds timeout) const
{
    const auto challenge =
        ReadMessage<ChallengeMessage>(channel.ReceiveOwed(FrameKind::Challenge, 0, maxControlPayload, timeout));
    const Handshake handshake{port, challenge.serverNonce, DrawRandom<Nonce>()};
    SendMessage(channel, FrameKind::Proof, ClientProofMessage{handshake.clientNonce, Prove(clientLabel, handshake)});
    const auto answer =
        ReadMessage<ServerProofMessage>(channel.ReceiveOwed(FrameKind::Proof, 0, maxControlPayload, timeout));
    if (!IsProof(answer.proof, serverLabel, handshake))
    {
        throw TransportException(TransportFailure::Refused, "the server does not know the system's secret");
    }
}

Proof Secret::Prove(std::string_view label, const Handshake& handshake) const
{
    const std::array<std::uint8_t, 2> port{static_cast<std::uint8_t>(handshake.port & 0xffU),
                                           static_cast<std::uint8_t>(handshake.port >> 8U)};
    hmac_sha256_ctx context;
    ::hmac_sha256_set_key(&context, key.size(), key.data());
    ::hmac_sha256_update(&context, label.size(), reinterpret_cast<const std::uint8_t*>(label.data()));
    ::hmac_sha256_update(&context, port.size(), port.data());
    ::hmac_sha256_update(&context, handshake.serverNonce.size(), handshake.serverNonce.data());
    ::hmac_sha256_update(&context, handshake.clientNonce.size(), handshake.clientNonce.data());
    Proof proof{};
    ::hmac_sha256_digest(&context, proof.size(), proof.data());
    return proof;
}

bool Secret::IsProof(const Proof& proof, std::string_view label, const Handshake& handshake) const
{
    const Proof expected = Prove(label, handshake);
    // Takes the same time wherever the two differ.
    return ::memeql_sec(proof.data(), expected.data(), expected.size()) != 0;
}

} // namespace Vela::System::Rsc
