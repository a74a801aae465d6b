#include "TestService.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::GetThrownMessage;

namespace
{

using Bytes = std::vector<std::byte>;

Bytes MakeBytes(std::initializer_list<int> values)
{
    Bytes bytes;
    for (const int value : values)
    {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

template <typename T>
Bytes Encode(const T& value)
{
    RemotingWriter writer(1U << 20U);
    WriteRemote(writer, value);
    return {writer.GetData().begin(), writer.GetData().end()};
}

template <typename T>
T Decode(const Bytes& bytes)
{
    RemotingReader reader(bytes);
    T value{};
    ReadRemote(reader, value);
    reader.ReadEnd();
    return value;
}

template <typename T>
void ExpectWire(const T& value, std::initializer_list<int> bytes)
{
    EXPECT_EQ(Encode(value), MakeBytes(bytes));
    EXPECT_EQ(Decode<T>(MakeBytes(bytes)), value);
}

struct Nested
{
    std::vector<Nested> children;
};

} // namespace

} // namespace Vela::System::Rsc::Testing

namespace Vela::System::Rsc
{

template <>
struct StructFields<Testing::Nested>
{
    static constexpr auto fields = std::tuple(&Testing::Nested::children);
};

} // namespace Vela::System::Rsc

namespace Vela::System::Rsc::Testing
{

TEST(Marshaling, WritesEveryKindOfValueBehindItsTypeCodeInLittleEndian)
{
    ExpectWire(true, {2, 1});
    ExpectWire(std::int8_t{-2}, {4, 0xfe});
    ExpectWire(std::uint8_t{200}, {5, 200});
    ExpectWire(std::int16_t{-2}, {6, 0xfe, 0xff});
    ExpectWire(std::uint16_t{0x1234}, {7, 0x34, 0x12});
    ExpectWire(std::int32_t{-2}, {8, 0xfe, 0xff, 0xff, 0xff});
    ExpectWire(std::uint32_t{0x12345678}, {9, 0x78, 0x56, 0x34, 0x12});
    ExpectWire(std::int64_t{-2}, {10, 0xfe, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff});
    ExpectWire(std::uint64_t{1} << 56U, {11, 0, 0, 0, 0, 0, 0, 0, 1});
    ExpectWire(1.0F, {12, 0, 0, 0x80, 0x3f});
    ExpectWire(1.0, {13, 0, 0, 0, 0, 0, 0, 0xf0, 0x3f});
    ExpectWire(Colour::Blue, {5, 7});
    ExpectWire(String("ab"), {19, 2, 2, 0, 0, 0, 'a', 'b'});
    ExpectWire(RscString<8>("ab"), {19, 2, 2, 0, 0, 0, 'a', 'b'});
    ExpectWire(RscVariant<8>("ab"), {19, 2, 2, 0, 0, 0, 'a', 'b'});
    ExpectWire(RscVariant<8>(std::uint16_t{3}), {7, 3, 0});
    ExpectWire(Point{1, 0}, {32, 2, 0, 6, 1, 0, 13, 0, 0, 0, 0, 0, 0, 0, 0});
    ExpectWire(std::vector<bool>{true, false}, {33, 2, 0, 0, 0, 2, 1, 2, 0});
    ExpectWire(std::array<std::uint8_t, 2>{8, 9}, {33, 2, 0, 0, 0, 5, 8, 5, 9});
    // `long` is what its size says, on every architecture.
    EXPECT_EQ(Encode(1L).front(), sizeof(long) == 8 ? std::byte{10} : std::byte{8});
}

TEST(Marshaling, RefusesWhatDoesNotFitItsType)
{
    EXPECT_THROW(Decode<bool>(MakeBytes({2, 2})), RscException);
    EXPECT_THROW(Decode<std::uint32_t>(MakeBytes({8, 1, 0, 0, 0})), RscException);
    EXPECT_THROW(Decode<std::uint8_t>(MakeBytes({5, 1, 0})), RscException) << "more bytes than the value takes";
    EXPECT_THROW(Decode<String>(MakeBytes({19, 1, 1, 0, 0, 0, 'a'})), RscException) << "another encoding";
    EXPECT_THROW(Decode<String>(MakeBytes({19, 2, 0xff, 0xff, 0xff, 0xff, 'a'})), RscException);
    EXPECT_THROW(Decode<RscString<2>>(MakeBytes({19, 2, 2, 0, 0, 0, 'a', 'b'})), RscException);
    EXPECT_THROW(Decode<RscVariant<1>>(MakeBytes({19, 2, 2, 0, 0, 0, 'a', 'b'})), RscException);
    EXPECT_THROW(Decode<RscVariant<8>>(MakeBytes({32, 1, 0})), RscException);
    EXPECT_THROW(Decode<Point>(MakeBytes({32, 3, 0, 6, 1, 0})), RscException) << "another number of fields";
    EXPECT_THROW((Decode<std::array<std::uint8_t, 2>>(MakeBytes({33, 1, 0, 0, 0, 5, 8}))), RscException);
}

TEST(Marshaling, RefusesAMessageCutAnywhere)
{
    const Drawing drawing{"name", Colour::Blue, {{1, 2}, {3, 4}}, {5, 6}};
    const Bytes whole = Encode(drawing);
    EXPECT_EQ(Decode<Drawing>(whole), drawing);
    for (std::size_t length = 0; length < whole.size(); ++length)
    {
        EXPECT_THROW(Decode<Drawing>(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))),
                     RscException)
            << length;
    }
}

TEST(Marshaling, AllocatesNothingForWhatIsOnlyAnnounced)
{
    // Four thousand million elements, and two that have arrived.
    EXPECT_THROW(Decode<std::vector<Drawing>>(MakeBytes({33, 0xff, 0xff, 0xff, 0xff, 5, 1, 5, 2})), RscException);

    // A message of two bytes per element must not become one of hundreds of bytes each without a bound.
    RemotingWriter writer(1U << 24U);
    constexpr std::size_t count = 2U * RemotingReader::maxElementMemory / sizeof(Drawing);
    writer.WriteBeginArray(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        writer.WriteValue(std::uint8_t{0});
    }
    EXPECT_NE(GetThrownMessage<RscException>(
                  [&] {
                      Decode<std::vector<Drawing>>({writer.GetData().begin(), writer.GetData().end()});
                  })
                  .find("arrays that take more than"),
              String::npos);

    Nested root;
    Nested* deepest = &root;
    for (unsigned depth = 0; depth < 100; ++depth)
    {
        deepest = &deepest->children.emplace_back();
    }
    EXPECT_THROW(Decode<Nested>(Encode(root)), RscException);
}

TEST(Marshaling, BoundsWhatIsWritten)
{
    RemotingWriter writer(8);
    WriteRemote(writer, std::uint32_t{1});
    EXPECT_THROW(WriteRemote(writer, std::uint32_t{1}), RscException);
    EXPECT_TRUE(writer.HasOverflowed());
    EXPECT_THROW(RemotingWriter(100).WriteStringInternal("abc", 2, utf8Encoding, true), RscException);
}

TEST(RscString, HoldsTextsShorterThanItsSize)
{
    EXPECT_EQ(RscString<4>().ToString(), "");
    EXPECT_EQ(RscString<4>("abc").ToString(), "abc");
    EXPECT_EQ(RscString<4>(String("a\0b", 3)).ToString(), String("a\0b", 3));
    EXPECT_EQ(GetThrownMessage<ArgumentException>([] { RscString<4>("abcd"); }),
              "Input string is too long (argument 'arg': 'abcd')");
}

TEST(RscVariant, HoldsAScalarOrAText)
{
    EXPECT_EQ(RscVariant<512>().ToString(), "");
    EXPECT_EQ(RscVariant<512>(42).ToString(), "42");
    EXPECT_EQ(RscVariant<512>(false).ToString(), "false");
    EXPECT_EQ(RscVariant<512>(std::int8_t{-7}).ToString(), "-7");
    EXPECT_EQ(RscVariant<512>(std::numeric_limits<std::uint64_t>::max()).ToString(), "18446744073709551615");
    EXPECT_EQ(RscVariant<512>(0.1).ToString(), "0.1");
    EXPECT_EQ(RscVariant<512>(1LL).GetType(), RscTypeCode::Int64);
    EXPECT_EQ(RscVariant<4>("abcd").ToString(), "abcd");
    EXPECT_EQ(GetThrownMessage<ArgumentException>([] { RscVariant<4>("abcde"); }),
              "Cannot copy string: argument string length 5 exceeds MaxStringSize 4");
}

} // namespace Vela::System::Rsc::Testing
