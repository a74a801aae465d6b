#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

using namespace Vela;
using System::Commons::Environment;
using System::Commons::Configuration::PlaceholderExpression;
using Testing::GetThrownMessage;

class PlaceholderExpressionTest : public testing::Test
{
protected:
    PlaceholderExpressionTest()
    {
        Environment::Setup();
        Environment::SetVariable("PLACE_A", "alpha");
        Environment::SetVariable("PLACE_NESTED", "${PLACE_A}$$");
        Environment::SetVariable("PLACE_EMPTY", "");
    }

    ~PlaceholderExpressionTest() override
    {
        Environment::Dispose();
    }
};

TEST_F(PlaceholderExpressionTest, PutsValuesInPlaceWithoutSearchingThemAgain)
{
    EXPECT_EQ(PlaceholderExpression::Resolve(""), "");
    EXPECT_EQ(PlaceholderExpression::Resolve("${PLACE_A}"), "alpha");
    EXPECT_EQ(PlaceholderExpression::Resolve("<${PLACE_A}${PLACE_EMPTY}${PLACE_A}>"), "<alphaalpha>");
    EXPECT_EQ(PlaceholderExpression::Resolve("${PLACE_NESTED}"), "${PLACE_A}$$");
}

TEST_F(PlaceholderExpressionTest, EndsGrowthBeforeItTakesTheMemory)
{
    Environment::SetVariable("PLACE_0", String(1000, 'x'));
    int generation = 0;
    EXPECT_THROW(
        for (; generation < 100; ++generation) {
            const String fourTimes =
                fmt::format("${{PLACE_{0}}}${{PLACE_{0}}}${{PLACE_{0}}}${{PLACE_{0}}}", generation);
            Environment::SetVariable(fmt::format("PLACE_{}", generation + 1),
                                     PlaceholderExpression::Resolve(fourTimes));
        },
        InvalidOperationException);
    EXPECT_EQ(generation, 3);
}

TEST_F(PlaceholderExpressionTest, KeepsDollarSignsThatBeginNoPlaceholder)
{
    EXPECT_EQ(PlaceholderExpression::Resolve("$${PLACE_A}"), "${PLACE_A}");
    EXPECT_EQ(PlaceholderExpression::Resolve("$$${PLACE_A}"), "$alpha");
    EXPECT_EQ(PlaceholderExpression::Resolve("5$ {x} $"), "5$ {x} $");
    const String text = "/a$b/$${c}$";
    EXPECT_EQ(PlaceholderExpression::Resolve(PlaceholderExpression::Escape(text)), text);
}

TEST_F(PlaceholderExpressionTest, RefusesWhatItCannotResolve)
{
    EXPECT_EQ(
        GetThrownMessage<KeyNotFoundException>([] { PlaceholderExpression::Resolve("x${PLACE_A}${PLACE_NONE}"); }),
        "The environment variable 'PLACE_NONE' in 'x${PLACE_A}${PLACE_NONE}' is not defined.");
    EXPECT_THROW(PlaceholderExpression::Resolve("a${PLACE_A"), ArgumentException);
    EXPECT_THROW(PlaceholderExpression::Resolve("${}"), ArgumentException);
}

TEST_F(PlaceholderExpressionTest, KnowsTheSinglePlaceholder)
{
    EXPECT_EQ(PlaceholderExpression::GetPlaceholderName("${VELA_FEATURE:x}"), "VELA_FEATURE:x");
    for (const char* text : {"", "A", "$${A}", "x${A}", "${A}x", "${A}${B}", "${A}$$"})
    {
        EXPECT_EQ(PlaceholderExpression::GetPlaceholderName(text), "") << text;
    }
}
