#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>

#include <gtest/gtest.h>

using namespace Vela;

namespace
{

template <typename Thrown>
CaughtException Catch(const Thrown& thrown)
{
    try
    {
        throw thrown;
    }
    catch (...)
    {
        return CaughtException::Current();
    }
}

} // namespace

TEST(Exceptions, KeepPreformattedTextsWithBracesAsTheyAre)
{
    EXPECT_EQ(Exception(String("a {0} {b")).GetMessage(), "a {0} {b");
    EXPECT_EQ(InvalidOperationException("Library '{0}' not found.", "x{}").GetMessage(), "Library 'x{}' not found.");
}

TEST(Exceptions, SayNameMessageDetailAndCauseInTheirFullText)
{
    auto exception = XmlException::At("/etc/a.config:12", "Dependency's binaryPath must not be empty.");
    exception.SetInnerText("Exception: cause");
    EXPECT_EQ(exception.ToString(), "XmlException: Dependency's binaryPath must not be empty. (/etc/a.config:12) ---> "
                                    "Exception: cause");
    EXPECT_STREQ(ArgumentNullException("destination").what(), "Value cannot be null. (argument 'destination')");
}

TEST(CaughtException, RethrowsAPlatformExceptionAsTheSameClassWithAllItsTexts)
{
    const auto original = ArgumentException::ForParameter("arg", "Input string is too long");
    const auto caught = Catch(original);
    EXPECT_EQ(caught.GetTypeName(), "Vela::ArgumentException");
    try
    {
        caught.Throw();
    }
    catch (const ArgumentException& exception)
    {
        EXPECT_EQ(exception.ToString(), original.ToString());
        EXPECT_EQ(exception.GetKind(), ExceptionKind::Argument);
    }
    EXPECT_THROW(Catch(RscException("gone")).Throw(), RscException);
    EXPECT_THROW(Catch(ArgumentNullException("p")).Throw(), ArgumentNullException);
}

TEST(CaughtException, KeepsTheTierOverAnyNumberOfRethrows)
{
    auto standard = Catch(std::out_of_range("index"));
    auto unspecified = Catch(42);
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(standard.GetTier(), CaughtException::Tier::Standard);
        EXPECT_EQ(standard.GetTypeName(), "std::out_of_range");
        EXPECT_EQ(standard.Describe("Exception '{0}': {1}", "Unspecified '{0}'", "x"), "Exception 'x': index");
        EXPECT_EQ(unspecified.GetTier(), CaughtException::Tier::Unspecified);
        EXPECT_EQ(unspecified.GetTypeName(), "int");
        EXPECT_EQ(unspecified.Describe("Exception '{0}': {1}", "Unspecified '{0}'", "x"), "Unspecified 'x'");
        standard = [&]
        {
            try
            {
                standard.Throw();
            }
            catch (...)
            {
                return CaughtException::Current();
            }
        }();
        unspecified = [&]
        {
            try
            {
                unspecified.Throw();
            }
            catch (...)
            {
                return CaughtException::Current();
            }
        }();
    }
}

TEST(CaughtException, WithoutACurrentExceptionIsUnspecified)
{
    EXPECT_EQ(CaughtException::Current().GetTier(), CaughtException::Tier::Unspecified);
}
