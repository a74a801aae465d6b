#include "HostFixture.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <boost/program_options/errors.hpp>

namespace Vela::System::Kiro::Internal
{
namespace
{

using Commons::Environment;

class CommandLineTest : public HostTest
{
};

TEST_F(CommandLineTest, HelpComesFirstAndListsTheOptionsInTheirOrder)
{
    PlainHost host(false);
    testing::internal::CaptureStdout();
    const int exitCode = host.Start({"--version", "--help"});
    const std::string text = testing::internal::GetCapturedStdout();

    EXPECT_EQ(exitCode, 0);
    EXPECT_TRUE(text.starts_with("Allowed options:\n"));
    EXPECT_TRUE(text.ends_with("\n\n"));
    EXPECT_EQ(text.find("VELA-Platform"), std::string::npos);
    std::size_t position = 0;
    for (const char* option : {"--help", "--name arg", "--localTcpPort arg", "--settings arg (=Default.kiro.settings)",
                               "--config arg (=Default.kiro.config)", "--core arg (=0)", "--debugBreak arg (=0)",
                               "--gatewayport arg", "--loglevel arg", "--singleProcess arg", "--version"})
    {
        const std::size_t found = text.find(option, position);
        ASSERT_NE(found, std::string::npos) << option << " in\n" << text;
        position = found;
    }
    EXPECT_TRUE(host.Dispose());
}

TEST_F(CommandLineTest, VersionIsOneLineAndSetsNothingUp)
{
    PlainHost host(true);
    host.onSetup = []
    {
        FAIL() << "set up";
    };
    testing::internal::CaptureStdout();
    const int exitCode = host.Start({"--version", "--settings=/nowhere"});

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Version VELA-Platform: 2024.0.8 LTS (24.0.8.148)\n");
    EXPECT_EQ(exitCode, 0);
}

TEST_F(CommandLineTest, RefusesWhatIsNoOptionOrDoesNotFitItsType)
{
    for (const char* argument : {"--unknown=1", "--core=one", "--name", "--debugBreak=maybe", "--gatewayport=70000",
                                 "--gatewayport=-1", "stray", "--localTcpPort=4294967296"})
    {
        PlainHost host(false);
        EXPECT_THROW(host.Start({argument}), boost::program_options::error) << argument;
    }
}

TEST_F(CommandLineTest, IsReadOnce)
{
    PlainHost host(false);
    CommandLine& commandLine = host.GetData().commandLine;
    EXPECT_TRUE(commandLine.Build());
    EXPECT_FALSE(commandLine.Build());
    Arguments first({"--name=First"});
    Arguments second({"--name=Second", "--core=3"});
    commandLine.Parse(first.GetCount(), first.Get());
    commandLine.Parse(second.GetCount(), second.Get());

    EXPECT_EQ(commandLine.Find<String>("name"), "First");
    EXPECT_EQ(commandLine.Find<std::int32_t>("core"), 0);
    EXPECT_EQ(commandLine.description.options().size(), 11U);
}

TEST_F(CommandLineTest, DefaultsHoldWithoutArguments)
{
    PlainHost host(false);
    ASSERT_EQ(host.Start({}), 0);
    const ApplicationData& data = host.GetData();

    EXPECT_EQ(host.GetName(), "Plain");
    EXPECT_EQ(data.settingsPath, "Default.kiro.settings");
    EXPECT_EQ(data.configPath, "Default.kiro.config");
    EXPECT_EQ(data.core, 0);
    EXPECT_EQ(data.localTcpPort, 0);
    EXPECT_FALSE(data.isDebugBreak);
    EXPECT_FALSE(data.isSingleProcessGiven);
    EXPECT_TRUE(host.Dispose());
}

TEST_F(CommandLineTest, ValuesReachTheApplicationAndItsEnvironment)
{
    PlainHost host(true);
    String port;
    host.onSetup = [&]
    {
        Environment::GetVariableValue("VelaGatewayPort", port);
    };
    ASSERT_EQ(host.Start({WriteSettings(), "--name=Other", "--localTcpPort=4711", "--config=My.config",
                          "--gatewayport=65535"}),
              0);

    EXPECT_EQ(host.GetName(), "Other");
    EXPECT_EQ(Singleton<AppDomain>::GetInstance().GetApplicationName(), "Other");
    EXPECT_EQ(host.GetData().localTcpPort, 4711);
    EXPECT_EQ(host.GetData().configPath, "My.config");
    EXPECT_EQ(port, "65535");
    EXPECT_NE(ReadLog("Other").find("Application 'Other' terminates."), std::string::npos);
    EXPECT_TRUE(host.Dispose());
}

TEST_F(CommandLineTest, SettingsDefineTheGatewayPortBeforeTheOption)
{
    PlainHost host(true);
    String port;
    host.onSetup = [&]
    {
        Environment::GetVariableValue("VelaGatewayPort", port);
    };
    ASSERT_EQ(host.Start({WriteSettings("<EnvironmentVariables>"
                                        "<EnvironmentVariable name=\"VelaGatewayPort\" value=\"1\"/>"
                                        "</EnvironmentVariables>"),
                          "--gatewayport=2"}),
              0);
    EXPECT_EQ(port, "1");
    EXPECT_TRUE(host.Dispose());
}

struct Precedence
{
    const char* attributes;
    std::vector<std::string> arguments;
    std::int32_t core;
    bool singleProcess;
};

TEST_F(CommandLineTest, OverridesTheProcessSettings)
{
    const Precedence cases[] = {
        {"singleProcess=\"true\"", {}, -1, true},
        {"singleProcess=\"true\"", {"--singleProcess=false"}, -1, false},
        {"singleProcess=\"false\"", {"--singleProcess=true"}, -1, true},
        {"singleProcess=\"false\" defaultProcessAffinityMask=\"9998\"", {}, 9998, false},
        {"singleProcess=\"false\" defaultProcessAffinityMask=\"9998\"", {"--core=0"}, 9998, false},
        {"singleProcess=\"false\" defaultProcessAffinityMask=\"9998\"", {"--core=9999"}, 9999, false},
    };
    for (const Precedence& row : cases)
    {
        PlainHost host(true);
        std::vector<std::string> arguments = row.arguments;
        arguments.push_back(WriteSettings("<ProcessSettings " + std::string(row.attributes) + "/>"));
        ASSERT_EQ(host.Start(arguments), 0);
        EXPECT_EQ(host.GetData().core, row.core) << row.attributes;
        EXPECT_EQ(host.GetData().settings.GetProcessSettings().IsSingleProcess(), row.singleProcess) << row.attributes;
        EXPECT_TRUE(host.Dispose());
    }
}

TEST_F(CommandLineTest, WarnsOfAnUnknownProcessorWhereMinusOneMeansAll)
{
    for (const auto& [argument, isUnknown] : {std::pair("--core=-1", false), std::pair("--core=-2", true)})
    {
        PlainHost host(true);
        ASSERT_EQ(host.Start({WriteSettings(), argument, std::string("--name=Core") + argument}), 0);
        EXPECT_TRUE(host.Dispose());
        const std::string text = ReadLog(std::string("Core") + argument);
        EXPECT_EQ(text.find("Cannot bind the process to processor -2") != std::string::npos, isUnknown) << text;
    }
}

TEST_F(CommandLineTest, LogLevelBeatsTheSettingsWhichBeatTheCaller)
{
    using Commons::Diagnostics::LogLevel;
    const std::string settings = WriteSettings();
    LogLevel level = LogLevel::None;
    const auto run = [&](std::vector<std::string> arguments, bool loadSettings, LogLevel callersLevel)
    {
        PlainHost host(loadSettings);
        host.onSetup = [&]
        {
            level = Commons::Diagnostics::LogManager::TryGetInstance()->GetLevel();
        };
        testing::internal::CaptureStdout();
        EXPECT_EQ(host.Start(std::move(arguments), callersLevel), 0);
        EXPECT_TRUE(host.Dispose());
        testing::internal::GetCapturedStdout();
        return level;
    };

    EXPECT_EQ(run({}, false, LogLevel::None), LogLevel::Info);
    EXPECT_EQ(run({}, false, LogLevel::Debug), LogLevel::Debug);
    EXPECT_EQ(run({settings}, true, LogLevel::Error), LogLevel::Trace);
    EXPECT_EQ(run({settings, "--loglevel=Warning"}, true, LogLevel::Error), LogLevel::Warning);
}

} // namespace
} // namespace Vela::System::Kiro::Internal
