#include <Vela/BasicVersion.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/VelaVersion.hpp>

#include <gtest/gtest.h>

using namespace Vela;

namespace
{

struct Parsed
{
    const char* text;
    BasicVersion version;
    /// The text form, when it differs from the text.
    const char* printed = nullptr;
};

const Parsed parsedTexts[] = {
    {"1.2", {1, 2}, "1.2.0.0"},
    {"7", {7, 0}, "7.0.0.0"},
    {"255.255.255.4294967295", {255, 255, 255, 4294967295U}},
    {"1.2.3.4 beta 2", {1, 2, 3, 4, "beta 2"}},
    {"Release (1.2.3.4 beta)", {"Release", 1, 2, 3, 4, "beta"}},
    {"2024.0.8 LTS (24.0.8.148)", {"2024.0.8 LTS", 24, 0, 8, 148}},
    // The name takes as much as it can.
    {"a (b) (1.2.3.4)", {"a (b)", 1, 2, 3, 4}},
    // Points between the numbers may be left out: the first number takes all digits then.
    {"12", {12, 0}, "12.0.0.0"},
    {"0001.2.3.4", {1, 2, 3, 4}, "1.2.3.4"},
};

const String refusedTexts[] = {"abc", "", "1.2.3.4.5", "-1.2", " 1.2", "1.2.3.4beta", "Release (x)", "Release(1.2.3.4)",
                               // Numbers above their field.
                               "256.0.0.0", "1.256", "1.2.256", "1.2.3.4294967296", "Release (1.300)",
                               // A text that would keep the expression busy for hours.
                               String(100000, '1') + "x"};

} // namespace

TEST(BasicVersion, ReadsAndWritesItsTextForms)
{
    for (const auto& [text, version, printed] : parsedTexts)
    {
        BasicVersion result;
        ASSERT_TRUE(BasicVersion::TryParse(text, result)) << text;
        EXPECT_EQ(result, version) << text << " was read as " << result.ToString();
        EXPECT_EQ(result.ToString(), printed != nullptr ? printed : text);
    }
}

TEST(BasicVersion, RefusesOtherTextsAndLeavesTheResultAlone)
{
    for (const String& text : refusedTexts)
    {
        BasicVersion result(9, 8, 7, 6);
        EXPECT_FALSE(BasicVersion::TryParse(text, result)) << text;
        EXPECT_EQ(result, BasicVersion(9, 8, 7, 6)) << text;
    }
    try
    {
        BasicVersion::Parse("abc");
        FAIL();
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "Invalid format of version string: abc");
    }
}

TEST(VelaVersion, IsTheVersionOfThePlatform)
{
    EXPECT_EQ(VelaVersion::GetCurrent().ToString(), "2024.0.8 LTS (24.0.8.148)");
    EXPECT_EQ(VelaVersion::GetCurrent().GetBuildVersion(), 148U);
}
