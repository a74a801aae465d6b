#include "HostFixture.hpp"

#include <Host/DefaultLibraryManager.hpp>
#include <Pm/ProcessManager.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Kiro/IEnvironmentVariablesProvider.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>

namespace Vela::System::Kiro::Internal
{
namespace
{

using Commons::Diagnostics::LogLevel;
using Commons::Diagnostics::LogManager;

constexpr const char* scmName = "Vela.System.Scm";

/// A process manager without remoting, and a log.
class DefaultComponentsTest : public HostTest, public IApplication, public Pm::IProcessHost
{
protected:
    DefaultComponentsTest()
        : processManager(*this, *this)
    {
        Environment::Setup();
        LogManager::CreateInstance(LogLevel::Trace, directory / "Plain.log");
    }

    ~DefaultComponentsTest() override
    {
        processManager.Dispose();
        LogManager::DisposeInstance();
        Environment::Dispose();
    }

    [[nodiscard]] String GetName() const override
    {
        return "Test";
    }

    void RequestProcessShutdown() override
    {
        FAIL() << "Nobody asked for this";
    }

    void BuildUp(const std::string& settings)
    {
        directory.Write("System/Scm/Scm.settings", settings);
        manager.AddDefaultComponents(Environment::GetLibrariesDirectory(), directory.GetPath().string());
        manager.BuildUpDefaultComponents(processManager);
    }

    using Environment = Commons::Environment;

    Pm::ProcessManager processManager;
    DefaultLibraryManager manager;
};

TEST_F(DefaultComponentsTest, BringUpTheSystemConfigurationManagerWithItsSwitches)
{
    BuildUp(R"(<ScmSettingsDocument>
        <Features><Feature name="Trace" enabled="false"/><Feature name="Alarm"/></Features>
        <Components><Component name="Alarm" enabled="true"/></Components>
        <Packages><Package name="Plant" enabled="0"/></Packages>
    </ScmSettingsDocument>)");

    const auto component = processManager.GetComponentProvider().GetComponent(scmName);
    const auto provider = std::dynamic_pointer_cast<IEnvironmentVariablesProvider>(component);
    ASSERT_TRUE(provider);
    const std::map<String, String> expected{{"VELA_FEATURE:Trace", "false"},
                                            {"VELA_FEATURE:Alarm", "true"},
                                            {"VELA_COMPONENT:Alarm", "true"},
                                            {"VELA_PACKAGE:Plant", "false"}};
    EXPECT_EQ(provider->GetEnvironmentVariables(), expected);
    const auto infos = manager.GetComponentInfos();
    ASSERT_EQ(infos.size(), 1U);
    EXPECT_EQ(infos[0].name.ToString(), scmName);
    EXPECT_EQ(infos[0].type.ToString(), "Vela::System::Scm::ScmComponent");
    EXPECT_EQ(infos[0].library.ToString(), "Vela.System.Scm.Library");
    EXPECT_TRUE(infos[0].isEnabled);

    manager.TearDownDefaultComponents(processManager);
    EXPECT_FALSE(processManager.GetComponentProvider().GetComponent(scmName));
    EXPECT_NE(ReadLog().find("Loaded library 'Vela.System.Scm.Library' from '"), std::string::npos);
}

TEST_F(DefaultComponentsTest, HaveNoSwitchesWithoutAFile)
{
    manager.AddDefaultComponents(Environment::GetLibrariesDirectory(), "");
    manager.BuildUpDefaultComponents(processManager);
    const auto component = processManager.GetComponentProvider().GetComponent(scmName);
    EXPECT_TRUE(std::dynamic_pointer_cast<IEnvironmentVariablesProvider>(component)->GetEnvironmentVariables().empty());
    EXPECT_NE(ReadLog().find("LoadSettings of component 'Vela.System.Scm' with path 'System/Scm/Scm.settings' called."),
              std::string::npos);
    manager.TearDownDefaultComponents(processManager);
}

TEST_F(DefaultComponentsTest, RefuseASwitchThatIsDeclaredTwiceAndLeaveNothingBehind)
{
    EXPECT_THROW(BuildUp(R"(<ScmSettingsDocument><Features>
        <Feature name="Trace" enabled="false"/><Feature name="Trace" enabled="true"/>
    </Features></ScmSettingsDocument>)"),
                 XmlException);
    EXPECT_FALSE(processManager.GetComponentProvider().GetComponent(scmName));
    manager.TearDownDefaultComponents(processManager);
    EXPECT_EQ(ReadLog().find("while tearing down"), std::string::npos);
}

TEST_F(DefaultComponentsTest, FailWithoutTheirLibrary)
{
    manager.AddDefaultComponents(directory.GetPath().string(), "");
    EXPECT_THROW(manager.BuildUpDefaultComponents(processManager), Exception);
    EXPECT_TRUE(manager.GetComponentInfos().empty());
}

TEST_F(DefaultComponentsTest, LogAFailureOfTheTearDown)
{
    BuildUp("<ScmSettingsDocument/>");
    processManager.DestroyComponent(scmName);
    manager.TearDownDefaultComponents(processManager);
    EXPECT_NE(ReadLog().find("Exception occurs while tearing down component 'Vela.System.Scm': "), std::string::npos);
    // Once tried is done.
    manager.TearDownDefaultComponents(processManager);
}

} // namespace
} // namespace Vela::System::Kiro::Internal
