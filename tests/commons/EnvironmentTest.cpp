#include <Vela/AppDomainSingleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/EnvironmentData.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Vela;
using namespace Vela::System::Commons;

namespace
{

struct EnvironmentTest : testing::Test
{
    EnvironmentTest()
        : data(SetUpData())
    {
        ::setenv("VELA_TEST_INHERITED", "outside", 1);
    }

    ~EnvironmentTest() override
    {
        Environment::Dispose();
        ::unsetenv("VELA_TEST_INHERITED");
        ::unsetenv("VELA_TEST_NEW");
    }

    static String Get(const String& name)
    {
        return Environment::GetVariableValueOr(name, "-");
    }

    static EnvironmentData& SetUpData()
    {
        Environment::Setup();
        return AppDomainSingleton<EnvironmentData>::GetInstance();
    }

    EnvironmentData& data;
};

struct OldNames : IDeprecatedNames
{
    bool ResolveDeprecatedVariableName(const String& name, String& currentName) const override
    {
        if (name != "VELA_TEST_OLD")
        {
            return false;
        }
        currentName = "VELA_TEST_NEW";
        return true;
    }
};

} // namespace

TEST_F(EnvironmentTest, PrefersOverridesToDefaultsAndDefaultsToWhatIsInherited)
{
    EXPECT_EQ(Get("VELA_TEST_INHERITED"), "outside");
    EXPECT_TRUE(data.AddDefaultVariable("VELA_TEST_INHERITED", "default"));
    EXPECT_EQ(Get("VELA_TEST_INHERITED"), "default");
    EXPECT_TRUE(data.AddOverriddenVariable("VELA_TEST_INHERITED", "override"));
    EXPECT_TRUE(data.AddDefaultVariable("VELA_TEST_INHERITED", "later default"));
    EXPECT_EQ(Get("VELA_TEST_INHERITED"), "override");
    EXPECT_TRUE(data.AddOverriddenVariable("VELA_TEST_INHERITED", "later override"));
    EXPECT_EQ(Get("VELA_TEST_INHERITED"), "later override");
    EXPECT_STREQ(::getenv("VELA_TEST_INHERITED"), "outside") << "published too early";
    ASSERT_EQ(data.GetVariables().size(), 1U);
    EXPECT_TRUE(data.GetVariables()[0].isOverridden);
}

TEST_F(EnvironmentTest, PublishesWhatCountsIntoTheProcessEnvironment)
{
    data.AddDefaultVariable("VELA_TEST_INHERITED", "default");
    data.AddOverriddenVariable("VELA_TEST_INHERITED", "override");
    data.AddDefaultVariable("VELA_TEST_NEW", "");
    Environment::RegisterEnvironmentVariables();
    EXPECT_STREQ(::getenv("VELA_TEST_INHERITED"), "override");
    EXPECT_STREQ(::getenv("VELA_TEST_NEW"), "");
}

TEST_F(EnvironmentTest, SetsAVariableAtRunTimeWhereItIsDefined)
{
    data.AddOverriddenVariable("VELA_TEST_INHERITED", "override");
    EXPECT_TRUE(Environment::SetVariable("VELA_TEST_INHERITED", "now"));
    EXPECT_EQ(Get("VELA_TEST_INHERITED"), "now");
    EXPECT_STREQ(::getenv("VELA_TEST_INHERITED"), "now");
    EXPECT_TRUE(Environment::SetVariable("VELA_TEST_NEW", "new"));
    EXPECT_TRUE(data.AddOverriddenVariable("VELA_TEST_NEW", "override"));
    EXPECT_EQ(Get("VELA_TEST_NEW"), "override") << "what is set is a default";
}

TEST_F(EnvironmentTest, RefusesWhatNoEnvironmentCanHold)
{
    const String nul("a\0b", 3);
    for (const auto& [name, value] :
         {std::pair<String, String>{"", "x"}, {"A=B", "x"}, {nul, "x"}, {"VELA_TEST_NEW", nul}})
    {
        EXPECT_FALSE(data.AddDefaultVariable(name, value));
        EXPECT_FALSE(data.AddOverriddenVariable(name, value));
        EXPECT_FALSE(Environment::SetVariable(name, value));
    }
    EXPECT_EQ(Get("VELA_TEST_NEW"), "-");
}

TEST_F(EnvironmentTest, FindsAVariableByItsOldName)
{
    const OldNames names;
    Environment::SetupSettings(names);
    EXPECT_EQ(Get("VELA_TEST_OLD"), "-");
    data.AddDefaultVariable("VELA_TEST_NEW", "new");
    EXPECT_EQ(Get("VELA_TEST_OLD"), "new");
    data.AddDefaultVariable("VELA_TEST_OLD", "old");
    EXPECT_EQ(Get("VELA_TEST_OLD"), "old") << "a definition under the name itself counts";
}

TEST_F(EnvironmentTest, ForgetsEverythingWhenDisposed)
{
    const OldNames names;
    Environment::SetupSettings(names);
    Environment::SetupSecuritySettings("/etc/security");
    EXPECT_EQ(Environment::GetSecuritySettingsPath(), "/etc/security");
    data.AddDefaultVariable("VELA_TEST_NEW", "new");
    Environment::Dispose();
    Environment::Dispose();
    EXPECT_EQ(Environment::GetSecuritySettingsPath(), "");
    EXPECT_EQ(Get("VELA_TEST_OLD"), "-");
    EXPECT_EQ(AppDomainSingleton<EnvironmentData>::TryGetInstance(), nullptr);
    Environment::RegisterEnvironmentVariables();
    Environment::Setup();
    EXPECT_EQ(Get("VELA_TEST_NEW"), "-");
}

TEST_F(EnvironmentTest, KnowsWhereTheExecutableAndItsLibrariesStand)
{
    EXPECT_EQ(Io::Path::GetFileName(Environment::GetExecutablePath()), "test-commons");
    EXPECT_TRUE(Io::File::Exists(Environment::GetLibrariesDirectory() + "/libVela.System.Commons.so"));
}
