#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <CheckedLog.hpp>
#include <FuzzTarget.hpp>
#include <Security/AccessControl.hpp>
#include <Security/Secret.hpp>
#include <Server/ServerConnection.hpp>
#include <TemporaryDirectory.hpp>
#include <TestService.hpp>
#include <Transport/Frame.hpp>
#include <Transport/Messages.hpp>
#include <Transport/RuntimeDirectory.hpp>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Rsc;
using System::Commons::UniqueFd;
using System::Rsc::Testing::Drawing;

/// Has an operation for each kind of argument, and answers at once.
class IFuzzService : public IRscService
{
public:
    virtual void Nothing() = 0;
    virtual Drawing Mirror(const Drawing& drawing) = 0;
    virtual bool Measure(const RscString<128>& text, RscVariant<64> value, std::vector<std::uint32_t>& sizes) = 0;
    virtual void Refuse(const String& why) = 0;
};

class FuzzService final : public IFuzzService
{
public:
    void Nothing() override
    {
    }

    Drawing Mirror(const Drawing& drawing) override
    {
        return drawing;
    }

    bool Measure(const RscString<128>& text, RscVariant<64> value, std::vector<std::uint32_t>& sizes) override
    {
        sizes = {static_cast<std::uint32_t>(text.GetView().size()), static_cast<std::uint32_t>(value.GetType())};
        return text.IsEmpty();
    }

    void Refuse(const String& why) override
    {
        throw InvalidOperationException(why);
    }
};

} // namespace

} // namespace Vela::Fuzz

namespace Vela::System::Rsc
{

template <>
struct OperationTable<Fuzz::IFuzzService>
{
    using IFuzzService = Fuzz::IFuzzService;
    static constexpr const char* interfaceName = "Fuzz";
    static constexpr auto operations =
        Operations(Operation<1, &IFuzzService::Nothing>("Nothing"), Operation<2, &IFuzzService::Mirror>("Mirror"),
                   Operation<3, &IFuzzService::Measure>("Measure"), Operation<4, &IFuzzService::Refuse>("Refuse"));
};

} // namespace Vela::System::Rsc

namespace Vela::Fuzz
{

namespace
{

/// One service that anybody of the system's user may call, one that nobody may call.
std::shared_ptr<ServiceRegistry> MakeRegistry(const AccessControl& accessControl)
{
    auto registry = std::make_shared<ServiceRegistry>();
    for (const bool isSecure : {false, true})
    {
        RscServiceFactory<IFuzzService, FuzzService> factory;
        factory.SetSecurityEnabled(isSecure);
        const String name = isSecure ? "Locked" : "Open";
        registry->Publish({"", name}, factory.GetInterfaceName(),
                          factory.CreateServiceStub(name.c_str(), &accessControl));
    }
    return registry;
}

std::shared_ptr<const Secret> MakeSecret()
{
    const Vela::Testing::TemporaryDirectory directory;
    System::Commons::Environment::SetVariable(System::Commons::Environment::runtimeDirectoryName,
                                              directory.GetPath().string());
    return std::make_shared<const Secret>(Secret::OpenOrCreate(RuntimeDirectory(RuntimeDirectory::Use::Share)));
}

std::shared_ptr<const ServerData> MakeServer()
{
    auto server = std::make_shared<ServerData>();
    server->processName = "Server";
    server->accessControl = std::make_shared<const AccessControl>(std::vector<Grant>());
    server->registry = MakeRegistry(*server->accessControl);
    server->secret = MakeSecret();
    server->options.maxRequestSize = 4096;
    return server;
}

struct Connection
{
    Connection()
    {
        int ends[2];
        Require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "there is a pair of sockets");
        client.Reset(ends[0]);
        server.Reset(ends[1]);
        // All answers stay in the socket until the server is done.
        const int size = 1 << 20;
        ::setsockopt(server.Get(), SOL_SOCKET, SO_SNDBUF, &size, sizeof(size));
    }

    UniqueFd client;
    UniqueFd server;
};

/// Calls `visit` with every whole frame of a stream, up to the first that is none.
template <typename Visit>
std::size_t VisitFrames(std::span<const std::byte> stream, Visit&& visit)
{
    std::size_t position = 0;
    while (stream.size() - position >= FrameHeader::size)
    {
        std::optional<FrameHeader> header;
        if (GetRefusal([&] { header = FrameHeader::Decode(stream.subspan(position).first<FrameHeader::size>()); }) ||
            header->payloadLength > stream.size() - position - FrameHeader::size)
        {
            break;
        }
        visit(*header, position + FrameHeader::size);
        position += FrameHeader::size + header->payloadLength;
    }
    return position;
}

/// A client may let the server wait for a service, which would only take time.
String WithoutWaits(std::string_view input)
{
    String stream(input);
    VisitFrames(AsBytes(input),
                [&](const FrameHeader& header, std::size_t payload)
                {
                    constexpr std::size_t waitSize = sizeof(OpenMessage::waitMilliseconds);
                    if (header.kind == FrameKind::Open && header.payloadLength > waitSize)
                    {
                        stream.replace(payload + header.payloadLength - waitSize, waitSize, waitSize, '\0');
                    }
                });
    return stream;
}

std::vector<FrameHeader> ReadFrames(std::span<const std::byte> stream)
{
    std::vector<FrameHeader> frames;
    const std::size_t size =
        VisitFrames(stream, [&](const FrameHeader& header, std::size_t) { frames.push_back(header); });
    Require(size == stream.size(), "the server sends whole frames");
    return frames;
}

String ReceiveAll(const UniqueFd& socket)
{
    String received;
    char block[65536];
    for (ssize_t count = 1; count > 0;)
    {
        count = ::recv(socket.Get(), block, sizeof(block), 0);
        received.append(block, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return received;
}

void CheckAnswers(const std::vector<FrameHeader>& requests, const std::vector<FrameHeader>& answers)
{
    Require(answers.size() <= requests.size(), "each frame has at most one answer");
    for (std::size_t i = 0; i < answers.size(); ++i)
    {
        Require(answers[i].kind == (i == 0 ? FrameKind::Welcome : FrameKind::Response), "a request gets a response");
        Require(answers[i].requestNumber == requests[i].requestNumber, "a response has the number of its request");
    }
}

/// The first byte chooses the kind of socket, the rest is what the client sends before it ends its side.
bool Run(std::string_view input)
{
    static const auto server = []
    {
        SetUpCheckedLog();
        return MakeServer();
    }();
    if (input.empty())
    {
        return false;
    }
    const bool isTcp = input.front() == 't';
    const String stream = WithoutWaits(input.substr(1, 65536));
    Connection connection;
    Require(::send(connection.client.Get(), stream.data(), stream.size(), MSG_DONTWAIT) ==
                static_cast<ssize_t>(stream.size()),
            "the stream fits the socket");
    ::shutdown(connection.client.Get(), SHUT_WR);
    const auto peer = isTcp ? ConnectionPeer::MakeTcp() : ConnectionPeer::MakeUnix({::geteuid(), ::getpid()});
    ServerConnection(server, std::move(connection.server), peer, {::geteuid(), ::getpid(), {}}).Serve();

    const String received = ReceiveAll(connection.client);
    const auto answers = ReadFrames(AsBytes(received));
    if (isTcp)
    {
        Require(!answers.empty() && answers.front().kind == FrameKind::Challenge, "a TCP client is challenged");
        Require(std::all_of(answers.begin() + 1, answers.end(),
                            [](const FrameHeader& answer) { return answer.kind == FrameKind::Refusal; }),
                "a TCP client that proves nothing gets nothing");
        return false;
    }
    std::vector<FrameHeader> requests;
    VisitFrames(AsBytes(stream), [&](const FrameHeader& header, std::size_t) { requests.push_back(header); });
    CheckAnswers(requests, answers);
    return answers.size() == requests.size();
}

const FuzzTarget target("frames", &Run);

} // namespace

} // namespace Vela::Fuzz
