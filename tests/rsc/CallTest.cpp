#include "RscFixture.hpp"

#include <Vela/CaughtException.hpp>

#include <ThrownMessage.hpp>

#include <future>
#include <limits>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::GetThrownMessage;
using namespace std::chrono_literals;

namespace
{

/// Where the service lives that is called.
enum class Way
{
    Direct,
    Socket,
    Tcp,
};

/// What must be the same for a service of this process and for one of another, however it is reached.
class Call : public RscFixture, public ::testing::WithParamInterface<Way>
{
protected:
    std::shared_ptr<ITestService> OpenService()
    {
        Open();
        if (GetParam() == Way::Direct)
        {
            PublishOwn();
            return GetService(ownName);
        }
        if (GetParam() == Way::Socket)
        {
            StartPeer("Peer");
            return GetService("Peer");
        }
        const std::uint16_t port = FindFreePort();
        StartPeer("Peer", {fmt::format("port={}", port)});
        return GetService(ServiceProvider::LocalPort(port));
    }
};

} // namespace

TEST_P(Call, CarriesEveryTypeAloneAndInVectorsAndArrays)
{
    const auto service = OpenService();
    EXPECT_EQ(service->Reflect({}), Everything());

    const Point point{-3, 2.5};
    const Drawing drawing{"name", Colour::Blue, {point, point}, {1, 2}};
    const String text("\0text\xff", 6);
    using Int64 = std::numeric_limits<std::int64_t>;
    const Everything everything{
        .truth = true,
        .int8 = -128,
        .uint8 = 255,
        .int16 = -32768,
        .uint16 = 65535,
        .int32 = std::numeric_limits<std::int32_t>::min(),
        .uint32 = std::numeric_limits<std::uint32_t>::max(),
        .int64 = Int64::min(),
        .uint64 = std::numeric_limits<std::uint64_t>::max(),
        .single = std::numeric_limits<float>::denorm_min(),
        .number = -std::numeric_limits<double>::max(),
        .colour = Colour::Blue,
        .text = text,
        .shortText = "fifteen letters",
        .variant = "sixteen letters.",
        .point = point,
        .truths = {true, false, true},
        .integers = {Int64::min(), 0, Int64::max()},
        .singles = {0.1F, std::numeric_limits<float>::infinity()},
        .texts = {"", text},
        .variants = {true, std::int8_t{-1}, std::uint64_t{1}, 0.1F, 0.1, "text"},
        .drawings = {drawing, {}},
        .bytes = {0, 128, 255},
        .twoTexts = {"one", ""},
        .twoVariants = {RscVariant<16>(1.5), RscVariant<16>("two")},
        .twoPoints = {point, {}},
        .colours = {{Colour::Red, Colour::Blue}, {}, {Colour::Blue}},
        .lines = {{point, {}}, {}},
        .rows = {std::vector<std::int8_t>{-1}, {}},
    };
    EXPECT_EQ(service->Reflect(everything), everything);
}

TEST_P(Call, CarriesArgumentsAndResultsOfEveryKind)
{
    const auto service = OpenService();
    service->Nothing();
    EXPECT_EQ(service->Add(std::numeric_limits<std::int32_t>::max(), -1), std::numeric_limits<std::int32_t>::max() - 1);

    String text(100'000, 'x');
    text[17] = '\0';
    EXPECT_EQ(service->Echo(text), text);
    EXPECT_EQ(service->Echo(""), "");

    const Drawing drawing{
        "name", Colour::Blue, {{-3, 2.5}, {4, -1e300}}, {1, std::numeric_limits<std::uint64_t>::max()}};
    EXPECT_EQ(service->Mirror(drawing), drawing);

    RscString<128> head;
    std::vector<RscString<128>> rest{"left", "over"};
    EXPECT_TRUE(service->Split("one two three", head, rest));
    EXPECT_EQ(head, RscString<128>("one"));
    EXPECT_EQ(rest, (std::vector<RscString<128>>{"two", "three"}));
    EXPECT_FALSE(service->Split("one", head, rest));
    EXPECT_TRUE(rest.empty());

    EXPECT_EQ(service->Describe(42), "8:42");
    EXPECT_EQ(service->Describe("text"), "19:text");
    EXPECT_EQ(service->Describe(true), "2:true");
    EXPECT_EQ(service->Describe(2.5F), "12:2.5");
}

TEST_P(Call, BringsExceptionsOfTheServiceAsTheSameClass)
{
    const auto service = OpenService();
    try
    {
        service->Fail("platform");
        FAIL();
    }
    catch (const KeyNotFoundException& exception)
    {
        EXPECT_EQ(exception.ToString(), "KeyNotFoundException: no key ---> the cause");
    }
    EXPECT_EQ(GetThrownMessage<ArgumentException>([&] { service->Fail("argument"); }), "bad {} (argument 'what')");
    EXPECT_EQ(GetThrownMessage<RethrownStandardException>([&] { service->Fail("standard"); }), "far out");
    try
    {
        service->Fail("odd");
        FAIL();
    }
    catch (const UnspecifiedException& exception)
    {
        EXPECT_EQ(exception.GetTypeName(), "Vela::System::Rsc::Testing::Oddity");
    }
    // The connection is as good as before.
    EXPECT_EQ(service->Add(1, 2), 3);
}

TEST_P(Call, ServesManyThreadsAtOnce)
{
    const auto service = OpenService();
    constexpr int count = 8;
    std::vector<std::future<bool>> callers;
    callers.reserve(count);
    for (int caller = 0; caller < count; ++caller)
    {
        callers.push_back(std::async(std::launch::async,
                                     [&service, caller]
                                     {
                                         bool isRight = true;
                                         for (int i = 0; i < 200; ++i)
                                         {
                                             isRight = isRight && service->Add(caller, i) == caller + i;
                                         }
                                         return isRight;
                                     }));
    }
    for (auto& caller : callers)
    {
        EXPECT_TRUE(caller.get());
    }
}

TEST_P(Call, FailsOnceTheServiceIsWithdrawn)
{
    const auto service = OpenService();
    if (GetParam() == Way::Direct)
    {
        EXPECT_TRUE(ServiceManager::UnpublishService({}, ownFactory.GetInterfaceName()));
    }
    else
    {
        peers.front()->Tell("unpublish", "unpublished");
    }
    EXPECT_EQ(
        GetThrownMessage<RscException>([&] { service->Nothing(); }),
        fmt::format("Call of operation 'Nothing' of service 'Vela.Testing.ITestService' in process '{}' failed: the "
                    "service is not published any more",
                    GetParam() == Way::Direct ? ownName : "Peer"));
}

INSTANTIATE_TEST_SUITE_P(Ways, Call, ::testing::Values(Way::Direct, Way::Socket, Way::Tcp),
                         [](const auto& way) {
                             return way.param == Way::Direct ? "Direct" : way.param == Way::Socket ? "Socket" : "Tcp";
                         });

} // namespace Vela::System::Rsc::Testing
