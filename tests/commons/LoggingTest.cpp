#include "StartedProcess.hpp"
#include "TemporaryDirectory.hpp"
#include "TestSystem.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>

using namespace Vela;
using namespace Vela::System::Commons::Diagnostics;
using Vela::Testing::StartedProcess;
using Vela::Testing::TemporaryDirectory;
using Vela::Testing::TestSystem;

namespace Plant
{

struct Reporter : private Loggable<Reporter>
{
    static Logger& GetLog()
    {
        return log;
    }
};

} // namespace Plant

namespace
{

/// A log that goes to a file.
struct LoggingTest : testing::Test
{
    LoggingTest()
    {
        AppDomain::CreateInstance().SetApplicationName("Test");
    }

    ~LoggingTest() override
    {
        LogManager::DisposeInstance();
        AppDomain::CreateInstance().SetApplicationName("");
    }

    LogManager& Configure(const String& elements, LogLevel level = LogLevel::Info) const
    {
        const String text = "<LogConfigurationDocument>" + elements + "</LogConfigurationDocument>";
        return LogManager::CreateInstanceFromFile(level, directory.Write("log.config", text));
    }

    [[nodiscard]] String GetConfigurationError(const String& elements) const
    {
        try
        {
            Configure(elements);
        }
        catch (const XmlException& exception)
        {
            return exception.GetMessage();
        }
        return "none";
    }

    TemporaryDirectory directory;
    String file = directory / "deep/test.log";
};

String RunHelper(const std::vector<std::string>& arguments)
{
    StartedProcess process(TestSystem::GetBuiltFile("tests/test-commons-helper"), arguments);
    EXPECT_EQ(process.AwaitEnd(), 0);
    return process.GetOutput();
}

std::size_t CountLines(const String& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

TEST_F(LoggingTest, WritesOneLineWithAllThatIsKnown)
{
    LogManager::CreateInstance(LogLevel::Info, file);
    EXPECT_EQ(Plant::Reporter::GetLog().GetCategory(), "Plant.Reporter");
    Plant::Reporter::GetLog().Info("level {0} of '{1}'", 7, "A{}");
    const std::regex pattern(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z Test\[)" + std::to_string(::getpid()) +
                             R"(\] Info  Plant\.Reporter: level 7 of 'A\{\}'\n)");
    EXPECT_TRUE(std::regex_match(directory.Read("deep/test.log"), pattern)) << directory.Read("deep/test.log");
}

TEST_F(LoggingTest, KeepsATextOfSeveralLinesTogether)
{
    LogManager::CreateInstance(LogLevel::Info, file);
    Plant::Reporter::GetLog().Write(LogLevel::Error, "one\r\n2024-08-01 \x1b[2Jtwo\n\nfour\n");
    const String text = directory.Read("deep/test.log");
    EXPECT_EQ(text.substr(text.find(" Error ")),
              " Error Plant.Reporter: one\n    2024-08-01 \\x1B[2Jtwo\n    \n    four\n");
}

TEST_F(LoggingTest, WritesWhatTheLevelOfTheLongestPrefixAllows)
{
    auto& manager = LogManager::CreateInstance(LogLevel::Info, file);
    manager.SetLevel("Plant", LogLevel::Error);
    manager.SetLevel("Plant.Pumps", LogLevel::Trace);
    manager.SetLevel("Plant.Valves", LogLevel::Off);
    EXPECT_EQ(manager.GetLevel(), LogLevel::Info);
    const std::pair<const char*, LogLevel> cases[] = {
        {"Plant.Pumps.Main", LogLevel::Trace},
        {"Plant.Pumps", LogLevel::Trace},
        {"Plant.PumpsAndMore", LogLevel::Error},
        {"Plant.Valves", LogLevel::Off},
        {"Plant", LogLevel::Error},
        {"Planet", LogLevel::Info},
    };
    for (const auto& [category, level] : cases)
    {
        EXPECT_EQ(Logger::Get(category).GetLevel(), level) << category;
    }
    Logger::Get("Plant.Valves").Fatal("silenced");
    Logger::Get("Plant.Pumps").Trace("heard");
    EXPECT_EQ(CountLines(directory.Read("deep/test.log")), 1U);
    manager.SetLevel("", LogLevel::Debug);
    EXPECT_EQ(Logger::Get("Plant.Valves").GetLevel(), LogLevel::Debug);
    EXPECT_EQ(&Logger::Get("Plant.Valves"), &Logger::Get("Plant.Valves"));
}

TEST_F(LoggingTest, CanBeSetUpAgainAfterItWasDisposedButNotTwice)
{
    LogManager::CreateInstance(LogLevel::Info, file);
    EXPECT_THROW(LogManager::CreateInstance(LogLevel::Info), InvalidOperationException);
    Plant::Reporter::GetLog().Info("first");
    LogManager::DisposeInstance();
    LogManager::DisposeInstance();
    EXPECT_EQ(LogManager::TryGetInstance(), nullptr);
    LogManager::CreateInstance(LogLevel::Info, file);
    Plant::Reporter::GetLog().Info("second");
    const String text = directory.Read("deep/test.log");
    EXPECT_NE(text.find("first"), String::npos) << "the file is appended to";
    EXPECT_NE(text.find("second"), String::npos) << text;
    AppDomain other;
    LogManager::AssignAppDomain(other);
    EXPECT_NE(Singleton<AppDomain>::TryGetInstance(), &other) << "the first application domain counts";
}

TEST_F(LoggingTest, CannotBeSetUpWithAFileThatCannotBeOpened)
{
    EXPECT_THROW(LogManager::CreateInstance(LogLevel::Info, directory.GetPath()), Exception);
    EXPECT_EQ(LogManager::TryGetInstance(), nullptr);
}

TEST_F(LoggingTest, GoesOnWhenTheDiskIsFull)
{
    auto& manager = Configure("<Sinks><File path='/dev/full'/><File path='deep/test.log'/></Sinks>");
    Plant::Reporter::GetLog().Info("on the other disk");
    manager.Flush();
    EXPECT_NE(directory.Read("deep/test.log").find("on the other disk"), String::npos);
}

TEST_F(LoggingTest, TellsHowManyMessagesItLostWhenItCanWriteAgain)
{
    Configure("<Sinks><File path='deep/test.log' maxSize='400' maxFiles='0'/></Sinks>");
    Plant::Reporter::GetLog().Info("{0}", String(500, 'x'));
    // Where the file stood there is a directory when the next one is to be opened.
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    Plant::Reporter::GetLog().Info("lost");
    Plant::Reporter::GetLog().Info("lost too");
    std::filesystem::remove(file);
    Plant::Reporter::GetLog().Info("back");
    const String text = directory.Read("deep/test.log");
    EXPECT_NE(text.find(": 2 messages could not be written here.\n"), String::npos) << text;
    EXPECT_NE(text.find(": back\n"), String::npos) << text;
}

TEST_F(LoggingTest, RotatesItsFile)
{
    Configure("<Sinks><File path='deep/test.log' maxSize='150' maxFiles='2'/></Sinks>");
    for (int number = 1; number <= 5; ++number)
    {
        Plant::Reporter::GetLog().Info("{0} {1}", number, String(60, 'x'));
    }
    for (const auto& [name, content] :
         {std::pair{"deep/test.log", ": 5 "}, {"deep/test.1.log", ": 4 "}, {"deep/test.2.log", ": 3 "}})
    {
        EXPECT_NE(directory.Read(name).find(content), String::npos) << name;
        EXPECT_EQ(CountLines(directory.Read(name)), 1U) << name;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory / "deep"), {}), 3);
}

TEST_F(LoggingTest, IsConfiguredByAFile)
{
    const auto& manager = Configure(R"(
        <Levels><Level category="Plant.Pumps" level="Trace"/><Level category="Plant" level="Warning"/></Levels>
        <Sinks><File directory="logs"/><File path="errors.txt" level="Error"/></Sinks>)",
                                    LogLevel::Debug);
    EXPECT_EQ(manager.GetLevel(), LogLevel::Debug);
    Logger::Get("Plant.Valves").Info("quiet");
    Logger::Get("Plant.Pumps").Trace("chatty");
    Logger::Get("Other").Debug("other");
    Logger::Get("Other").Error("wrong");
    const String all = directory.Read("logs/Test.log");
    EXPECT_EQ(CountLines(all), 3U) << all;
    EXPECT_NE(all.find("chatty"), String::npos);
    EXPECT_EQ(CountLines(directory.Read("errors.txt")), 1U);
}

TEST_F(LoggingTest, RefusesAConfigurationThatMeansNothing)
{
    EXPECT_EQ(GetConfigurationError("<Sinks><File/></Sinks>"), "A log file needs either a 'path' or a 'directory'.");
    EXPECT_EQ(GetConfigurationError("<Sinks><File path='a' directory='b'/></Sinks>"),
              "A log file needs either a 'path' or a 'directory'.");
    EXPECT_EQ(GetConfigurationError("<Sinks><File path='a' maxSize='0'/></Sinks>"),
              "A log file's 'maxSize' must be at least 1, its 'maxFiles' at most 1000.");
    EXPECT_EQ(GetConfigurationError("<Levels><Level category='' level='Info'/></Levels>"),
              "Category of a log level must not be empty.");
    EXPECT_EQ(GetConfigurationError("<Levels><Level category='A' level='Loud'/></Levels>"),
              "Invalid string for Enum 'Vela::System::Commons::Diagnostics::LogLevel' occurs: Loud");
    EXPECT_EQ(LogManager::TryGetInstance(), nullptr);
}

TEST(Logging, KeepsErrorsForStandardOutputWhenItIsNeverSetUp)
{
    const String output = RunHelper({"log-without-manager"});
    EXPECT_EQ(CountLines(output), 2U) << output;
    EXPECT_NE(output.find("] Error Early.Bird: lost key\n"), String::npos) << output;
    EXPECT_NE(output.find("] Fatal Early.Bird: lost house\n"), String::npos) << output;
}

TEST(Logging, WritesWhatWasSaidBeforeAndBetweenItsManagers)
{
    const String output = RunHelper({"log-through-managers"});
    std::vector<String> messages;
    const std::regex pattern("Early.Bird: (.*)");
    for (auto match = std::sregex_iterator(output.begin(), output.end(), pattern); match != std::sregex_iterator();
         ++match)
    {
        messages.push_back((*match)[1]);
    }
    EXPECT_EQ(messages, (std::vector<String>{"before", "with", "between, and wrong", "between"})) << output;
}

TEST(Logging, NeverMixesLinesOfSeveralThreads)
{
    const String output = RunHelper({"log-long-lines", "9000"});
    std::size_t whole = 0;
    for (std::size_t start = output.find('<'); start != String::npos; start = output.find('<', start + 1))
    {
        whole += output.find_first_not_of(output[start + 1], start + 1) == start + 9001 ? 1U : 0U;
    }
    EXPECT_EQ(whole, 200U);
    EXPECT_EQ(CountLines(output), 200U);
}

TEST(Logging, OutlivesAStandardOutputThatNobodyReads)
{
    EXPECT_EQ(RunHelper({"log-into-closed-pipe"}), "alive\n");
}
