#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

namespace Vela::System::Rsc::Testing
{

/// Speaks the protocol byte by byte, as rightly or wrongly as a test wants.
class RawClient
{
public:
    enum Kind : std::uint8_t
    {
        hello = 1,
        welcome = 2,
        open = 3,
        call = 4,
        response = 5,
        refusal = 6,
        challenge = 7,
        proof = 8,
    };

    struct Frame
    {
        std::uint8_t kind = 0;
        std::uint32_t requestNumber = 0;
        std::vector<std::byte> payload;
    };

    /// Connects to a Unix socket.
    explicit RawClient(const String& path);
    /// Connects to a TCP port of this machine.
    explicit RawClient(std::uint16_t port);

    /// Sends bytes; what the other side does not want any more is lost.
    void Send(const std::vector<std::byte>& bytes);
    void Send(const String& bytes);
    void SendFrame(std::uint8_t kind, std::uint32_t requestNumber, const std::vector<std::byte>& payload);
    /// The next frame; nothing when the other side has closed.
    std::optional<Frame> Receive();
    /// Takes up to that many bytes, whatever they are; false when the other side has closed.
    bool ReceiveSome(std::size_t size);
    /// The text of the refusal that comes next; empty when something else comes.
    String ReceiveRefusal();
    /// Whether the other side has closed, what it still had to say left aside.
    bool IsClosed();
    /// No more bytes will come.
    void EndSending();

    /// Introduces itself as "Raw".
    bool Introduce();
    /// The two numbers of this process's test service.
    std::vector<std::byte> OpenTestService();
    /// A call of the test service as bytes; opens the service.
    std::vector<std::byte> MakeCall(std::uint16_t operation, const std::vector<std::byte>& arguments = {});

    static std::vector<std::byte> MakeHeader(std::uint8_t kind, std::uint32_t requestNumber, std::uint32_t length);

private:
    bool ReceiveBytes(std::vector<std::byte>& bytes);

    Commons::UniqueFd socket;
};

/// A payload out of values that stand one behind another.
template <typename... Values>
std::vector<std::byte> MakePayload(const Values&... values)
{
    RemotingWriter writer(1U << 24U);
    (WriteRemote(writer, values), ...);
    return {writer.GetData().begin(), writer.GetData().end()};
}

/// The same, without type codes.
template <typename... Values>
std::vector<std::byte> MakeRawPayload(Values... values)
{
    RemotingWriter writer(1U << 24U);
    (writer.WriteRaw(values), ...);
    return {writer.GetData().begin(), writer.GetData().end()};
}

} // namespace Vela::System::Rsc::Testing
