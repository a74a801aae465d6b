#include "Security/Secret.hpp"

#include "Security/SipHash.hpp"
#include "Transport/EndpointName.hpp"
#include "Transport/FrameChannel.hpp"
#include "Transport/Messages.hpp"
#include "Transport/RuntimeDirectory.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Vela::System::Rsc
{

namespace
{

constexpr std::uint64_t serverRole = 1;
constexpr std::uint64_t clientRole = 2;

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

void SendNumbers(FrameChannel& channel, FrameKind kind, std::uint64_t first, std::uint64_t second)
{
    RemotingWriter& writer = channel.BeginFrame(maxControlPayload);
    writer.WriteRaw(first);
    writer.WriteRaw(second);
    channel.Send(kind, 0);
}

std::array<std::uint64_t, 2> ReceiveNumbers(FrameChannel& channel, FrameKind kind, std::chrono::milliseconds timeout)
{
    const Frame frame = channel.Receive(maxControlPayload, timeout);
    if (frame.kind != kind)
    {
        throw TransportException(TransportFailure::Refused, "no proof of the system's secret");
    }
    RemotingReader reader(frame.payload);
    const auto first = reader.ReadRaw<std::uint64_t>();
    const auto second = reader.ReadRaw<std::uint64_t>();
    reader.ReadEnd();
    return {first, second};
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
    const auto serverNumber = DrawRandom<std::uint64_t>();
    SendNumbers(channel, FrameKind::Challenge, serverNumber, 0);
    const auto [clientNumber, proof] = ReceiveNumbers(channel, FrameKind::Proof, timeout);
    if (proof != Prove(clientRole, serverNumber, clientNumber))
    {
        channel.SendText(FrameKind::Refusal, 0, "wrong proof of the system's secret");
        throw TransportException(TransportFailure::Refused, "wrong proof of the system's secret");
    }
    SendNumbers(channel, FrameKind::Proof, Prove(serverRole, serverNumber, clientNumber), 0);
}

void Secret::AuthenticateServer(FrameChannel& channel, std::chrono::milliseconds timeout) const
{
    const auto serverNumber = ReceiveNumbers(channel, FrameKind::Challenge, timeout)[0];
    const auto clientNumber = DrawRandom<std::uint64_t>();
    SendNumbers(channel, FrameKind::Proof, clientNumber, Prove(clientRole, serverNumber, clientNumber));
    if (ReceiveNumbers(channel, FrameKind::Proof, timeout)[0] != Prove(serverRole, serverNumber, clientNumber))
    {
        throw TransportException(TransportFailure::Refused, "the server does not know the system's secret");
    }
}

std::uint64_t Secret::Prove(std::uint64_t role, std::uint64_t serverNumber, std::uint64_t clientNumber) const
{
    RemotingWriter message(64);
    message.WriteRaw(role);
    message.WriteRaw(serverNumber);
    message.WriteRaw(clientNumber);
    return SipHash(key, message.GetData());
}

} // namespace Vela::System::Rsc
