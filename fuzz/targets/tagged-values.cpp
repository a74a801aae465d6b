#include <Vela/System/Rsc/Marshaling.hpp>

#include <FuzzTarget.hpp>
#include <Service/NotificationMarshaling.hpp>
#include <TestService.hpp>
#include <Transport/Messages.hpp>

#include <algorithm>
#include <iterator>

namespace Vela::Fuzz
{

namespace
{

struct Tree
{
    System::Rsc::RscVariant<64> value;
    std::vector<Tree> children;
};

} // namespace

} // namespace Vela::Fuzz

namespace Vela::System::Rsc
{

template <>
struct StructFields<Fuzz::Tree>
{
    static constexpr auto fields = std::tuple(&Fuzz::Tree::value, &Fuzz::Tree::children);
};

} // namespace Vela::System::Rsc

namespace Vela::Fuzz
{

namespace
{

using namespace System::Rsc;

template <typename T>
bool CheckAs(std::span<const std::byte> bytes)
{
    T value{};
    const bool isRead = !GetRefusal(
        [&]
        {
            RemotingReader reader(bytes);
            ReadRemote(reader, value);
            reader.ReadEnd();
        });
    if (isRead)
    {
        RemotingWriter writer(bytes.size());
        WriteRemote(writer, value);
        Require(std::ranges::equal(writer.GetData(), bytes), "a value is written as it was read");
    }
    return isRead;
}

constexpr bool (*checks[])(std::span<const std::byte>) = {
    &CheckAs<System::Rsc::Testing::Drawing>,
    &CheckAs<std::vector<System::Rsc::Testing::Drawing>>,
    &CheckAs<Tree>,
    &CheckAs<std::vector<bool>>,
    &CheckAs<std::vector<std::vector<String>>>,
    &CheckAs<std::array<std::vector<std::uint8_t>, 3>>,
    &CheckAs<std::vector<RscVariant<512>>>,
    &CheckAs<HelloMessage>,
    &CheckAs<WelcomeMessage>,
    &CheckAs<OpenMessage>,
    &CheckAs<OpenedMessage>,
    &CheckAs<System::Nm::Internal::NotificationBatch>,
    &CheckAs<System::Nm::Internal::NotificationDelivery>,
};

/// The first byte says what the others are read as.
bool Run(std::string_view input)
{
    return !input.empty() &&
           checks[static_cast<unsigned char>(input.front()) % std::size(checks)](AsBytes(input.substr(1)));
}

const FuzzTarget target("tagged-values", &Run);

} // namespace

} // namespace Vela::Fuzz
