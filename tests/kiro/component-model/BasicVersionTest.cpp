#include <Vela/BasicVersion.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/VelaVersion.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <string_view>

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

const char* const refusedTexts[] = {"abc", "", "1.2.3.4.5", "-1.2", " 1.2", "1.2.3.4beta", "Release (x)",
                                    "Release(1.2.3.4)",
                                    // Numbers above their field.
                                    "256.0.0.0", "1.256", "1.2.256", "1.2.3.4294967296", "Release (1.300)"};

void ExpectRefused(const String& text)
{
    BasicVersion result(9, 8, 7, 6);
    EXPECT_FALSE(BasicVersion::TryParse(text, result)) << text;
    EXPECT_EQ(result, BasicVersion(9, 8, 7, 6)) << text;
}

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
    for (const char* text : refusedTexts)
    {
        ExpectRefused(text);
    }
    ExpectRefused(String(100000, '1') + "x");
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

/// All short texts of the characters that mean something, beside the expressions that define the two forms.
TEST(BasicVersion, ReadsWhatTheExpressionsMatch)
{
    const std::regex numbers(R"((\d+)\.?(\d*)\.?(\d*)\.?(\d*)(?:\s(.+))?)");
    const std::regex named(R"((.+)\s\((\d+)\.?(\d*)\.?(\d*)\.?(\d*)(?:\s(.+))?\))");
    constexpr std::string_view characters = "1. ()\n";
    const auto number = [](const std::ssub_match& digits)
    {
        return static_cast<std::uint8_t>(digits.length() == 0 ? 0 : std::stoi(digits.str()));
    };
    for (unsigned seed = 0; seed < 20'000; ++seed)
    {
        String text;
        for (unsigned rest = seed; rest > 0; rest /= 6)
        {
            text += characters[rest % 6];
        }
        text = "1 (1" + text + ")";
        if (text.find("1111") != String::npos)
        {
            // Fits no number but the last.
            continue;
        }
        std::smatch match;
        std::optional<BasicVersion> expected;
        if (std::regex_match(text, match, named))
        {
            expected.emplace(match[1], number(match[2]), number(match[3]), number(match[4]), number(match[5]),
                             match[6]);
        }
        else if (std::regex_match(text, match, numbers))
        {
            expected.emplace(number(match[1]), number(match[2]), number(match[3]), number(match[4]), match[5]);
        }
        BasicVersion result;
        ASSERT_EQ(BasicVersion::TryParse(text, result), expected.has_value()) << text;
        ASSERT_EQ(result, expected.value_or(BasicVersion())) << text << " was read as " << result.ToString();
    }
}

TEST(VelaVersion, IsTheVersionOfThePlatform)
{
    EXPECT_EQ(VelaVersion::GetCurrent().ToString(), "2024.0.8 LTS (24.0.8.148)");
    EXPECT_EQ(VelaVersion::GetCurrent().GetBuildVersion(), 148U);
}
