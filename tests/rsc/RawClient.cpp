#include "RawClient.hpp"

#include "TestService.hpp"

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Vela::System::Rsc::Testing
{

namespace
{

/// A structure's fields follow its type code and their number.
template <typename... Fields>
std::vector<std::byte> MakeStruct(const Fields&... fields)
{
    RemotingWriter writer(1U << 20U);
    writer.WriteBeginStruct(sizeof...(Fields));
    (WriteRemote(writer, fields), ...);
    return {writer.GetData().begin(), writer.GetData().end()};
}

} // namespace

RawClient::RawClient(const String& path)
    : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    {
        throw std::runtime_error("connect");
    }
}

RawClient::RawClient(std::uint16_t port)
    : socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    {
        throw std::runtime_error("connect");
    }
}

void RawClient::Send(const std::vector<std::byte>& bytes)
{
    for (std::size_t sent = 0; sent < bytes.size();)
    {
        const auto count = ::send(socket.Get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count < 0)
        {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

void RawClient::Send(const String& bytes)
{
    const auto view = std::as_bytes(std::span(bytes));
    Send(std::vector<std::byte>(view.begin(), view.end()));
}

std::vector<std::byte> RawClient::MakeHeader(std::uint8_t kind, std::uint32_t requestNumber, std::uint32_t length)
{
    return MakeRawPayload(std::uint32_t{0x43535256}, std::uint8_t{1}, kind, std::uint16_t{0}, requestNumber, length);
}

void RawClient::SendFrame(std::uint8_t kind, std::uint32_t requestNumber, const std::vector<std::byte>& payload)
{
    std::vector<std::byte> frame = MakeHeader(kind, requestNumber, static_cast<std::uint32_t>(payload.size()));
    frame.insert(frame.end(), payload.begin(), payload.end());
    Send(frame);
}

bool RawClient::ReceiveBytes(std::vector<std::byte>& bytes)
{
    for (std::size_t received = 0; received < bytes.size();)
    {
        const auto count = ::recv(socket.Get(), bytes.data() + received, bytes.size() - received, 0);
        if (count <= 0)
        {
            return false;
        }
        received += static_cast<std::size_t>(count);
    }
    return true;
}

std::optional<RawClient::Frame> RawClient::Receive()
{
    std::vector<std::byte> header(16);
    if (!ReceiveBytes(header))
    {
        return std::nullopt;
    }
    RemotingReader reader(header);
    reader.ReadRaw<std::uint32_t>();
    reader.ReadRaw<std::uint8_t>();
    Frame frame;
    frame.kind = reader.ReadRaw<std::uint8_t>();
    reader.ReadRaw<std::uint16_t>();
    frame.requestNumber = reader.ReadRaw<std::uint32_t>();
    frame.payload.resize(reader.ReadRaw<std::uint32_t>());
    return ReceiveBytes(frame.payload) ? std::optional(frame) : std::nullopt;
}

bool RawClient::ReceiveSome(std::size_t size)
{
    std::vector<std::byte> bytes(size);
    return ::recv(socket.Get(), bytes.data(), bytes.size(), 0) > 0;
}

String RawClient::ReceiveRefusal()
{
    const auto frame = Receive();
    return frame && frame->kind == refusal ? RemotingReader(frame->payload).ReadStringInternal(1000, utf8Encoding, true)
                                           : String();
}

bool RawClient::IsClosed()
{
    while (Receive())
    {
    }
    return true;
}

void RawClient::EndSending()
{
    ::shutdown(socket.Get(), SHUT_WR);
}

bool RawClient::Introduce()
{
    SendFrame(hello, 0, MakeStruct(String("Raw")));
    const auto frame = Receive();
    return frame && frame->kind == welcome;
}

std::vector<std::byte> RawClient::OpenTestService()
{
    const String interfaceName = OperationTable<ITestService>::interfaceName;
    SendFrame(open, 1, MakeStruct(String(), interfaceName, interfaceName, std::uint32_t{0}));
    const auto frame = Receive();
    if (!frame || frame->kind != response)
    {
        throw std::runtime_error("open");
    }
    RemotingReader reader(frame->payload);
    reader.ReadConfirmation();
    reader.ReadBeginStruct(2);
    const auto number = reader.ReadValue<std::uint16_t>();
    return MakeRawPayload(number, reader.ReadValue<std::uint16_t>());
}

std::vector<std::byte> RawClient::MakeCall(std::uint16_t operation, const std::vector<std::byte>& arguments)
{
    std::vector<std::byte> payload = OpenTestService();
    const auto number = MakeRawPayload(operation);
    payload.insert(payload.end(), number.begin(), number.end());
    payload.insert(payload.end(), arguments.begin(), arguments.end());
    return payload;
}

} // namespace Vela::System::Rsc::Testing
