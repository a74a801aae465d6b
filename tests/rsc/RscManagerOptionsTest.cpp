#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

#include <TemporaryDirectory.hpp>
#include <gtest/gtest.h>

#include <string>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

TEST(RscManagerOptions, AreReadFromAFile)
{
    const Vela::Testing::TemporaryDirectory directory;
    const auto options = RscManagerOptions::Load(directory.Write("Rsc.settings", R"(<RscSettingsDocument>
        <Limits maxRequestSize="524288" maxResponseSize="600000" maxConnections="7" maxConnectionsPerProcess="5"/>
        <Timeouts call="1500ms" connect="2s" close="250" frame="4s"/>
        <Services><Service name="A" security="true"/><Service name="B" security="false"/></Services>
        </RscSettingsDocument>)"));
    EXPECT_EQ(options.maxRequestSize, 524'288U);
    EXPECT_EQ(options.maxResponseSize, 600'000U);
    EXPECT_EQ(options.maxConnections, 7U);
    EXPECT_EQ(options.maxConnectionsPerProcess, 5U);
    EXPECT_EQ(options.callTimeout, 1500ms);
    EXPECT_EQ(options.connectTimeout, 2s);
    EXPECT_EQ(options.closeTimeout, 250ms);
    EXPECT_EQ(options.frameTimeout, 4s);
    EXPECT_EQ(options.serviceSecurity, (std::map<String, bool>{{"A", true}, {"B", false}}));
}

TEST(RscManagerOptions, NeedNoFileUnlessItIsNamed)
{
    EXPECT_EQ(RscManagerOptions::Load("").maxRequestSize, RscManagerOptions().maxRequestSize);
    EXPECT_EQ(RscManagerOptions::Load("Rsc.settings").callTimeout, RscManagerOptions().callTimeout);
    EXPECT_THROW(RscManagerOptions::Load("/nowhere/Rsc.settings"), NotExistException);
}

TEST(RscManagerOptions, RefuseValuesThatCannotWork)
{
    const Vela::Testing::TemporaryDirectory directory;
    for (const std::string element :
         {R"(<Limits maxRequestSize="524287"/>)", R"(<Limits maxResponseSize="4294967295"/>)",
          R"(<Limits maxResponseSize="131072"/>)", R"(<Limits maxConnections="3"/>)",
          R"(<Limits maxConnectionsPerProcess="1"/>)", R"(<Timeouts call="99ms"/>)", R"(<Timeouts call="25h"/>)",
          R"(<Services><Service security="true"/></Services>)"})
    {
        EXPECT_THROW(RscManagerOptions::Load(
                         directory.Write("Rsc.settings", "<RscSettingsDocument>" + element + "</RscSettingsDocument>")),
                     XmlException)
            << element;
    }
}

} // namespace Vela::System::Rsc
