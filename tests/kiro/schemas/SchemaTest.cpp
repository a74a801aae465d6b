// The schemas and the loaders must agree: what a schema refuses, the loader refuses or warns about. Documents are taken
// apart at every element and attribute, and both are asked about each mutilated one.

#include <Config/KiroConfigurationLoader.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <CapturedLog.hpp>
#include <TemporaryDirectory.hpp>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <set>

namespace Vela::System::Kiro::Internal
{

using Commons::Environment;
using Vela::Testing::CapturedLog;
using Vela::Testing::TemporaryDirectory;

namespace
{

constexpr const char* wholeSettings = R"(<KiroSettingsDocument>
  <Includes><Include path="more/*.settings"/></Includes>
  <FileTrust documents="Ignore" securitySettings="Warn" libraries="Refuse" executables="Warn" runtimeDirectory="Refuse"/>
  <LogSettings logLevel="Debug" logDir="${LOGS}/x" configFile="log.xml"/>
  <ProcessSettings singleProcess="true" startWaitTime="1s" stopWaitTime="20" watchdogIdleTime="30ms"
    watchdogDelayTime="1min" slowStepTime="0.5h" defaultProcessAffinityMask="-1"/>
  <EnvironmentVariables>
    <EnvironmentVariable name="LOGS" value="/var/log"/>
    <EnvironmentVariable name="LOGS" value="/var/other" redefine="true"/>
    <EnvironmentVariable name="MODE" value="$$ ${LOGS}" override="1"/>
    <EnvironmentVariable name="OLD" value="" overridden="0"/>
  </EnvironmentVariables>
  <RscSettings path="Rsc.settings"/>
  <SecuritySettings path="/sec"/>
  <NmSettings path="../nm"/>
  <NmSettings/>
</KiroSettingsDocument>
)";

constexpr const char* wholeConfiguration = R"(<KiroConfigurationDocument>
  <Includes><Include path="more/*.config"/></Includes>
  <Components>
    <Component name="Tank1" type="Tank" library="Tanks" process="Plant" isRequired="true" startOrder="10">
      <Settings path="Tank1.settings"/>
    </Component>
    <Component name="Control" type="Control" library="" process="Plant" isEnabled="false" final="true"/>
    <Component name="Monitor" type="Monitor" library="Tanks" process="*"/>
  </Components>
  <Processes>
    <Process name="Plant" core="1" settingsPath="Plant.settings" localTcpPort="4711" debugBreak="false" args="--x 'y z'"/>
    <Process name="Outside" external="true" binaryPath="bin/other" workingDirectory="work"/>
  </Processes>
  <Libraries>
    <Library name="Tanks" binaryPath="libTanks.so"><Dependencies><Dependency binaryPath="libPumps.so"/></Dependencies></Library>
  </Libraries>
  <Processes/>
</KiroConfigurationDocument>
)";

constexpr std::array strangeValues{"",     " ",    "-1",   "-7",   "1e3",  "3000000000", "99999999999999999999",
                                   "1.5s", "1 s",  "5x",   "true", "TRUE", " true",      "yes",
                                   "2",    "None", "info", "Warn", "*",    "${",         "+3",
                                   "0x10"};

/// The document without, with another and with a strange piece, for each piece of it.
std::vector<String> Mutilate(const String& document)
{
    enum class Kind
    {
        Attribute,
        BeginOfElement,
        EmptyElement,
    };
    const std::vector<std::pair<Kind, std::regex>> pieces{
        {Kind::Attribute, std::regex(R"re( (\w+)="([^"]*)")re")},
        {Kind::BeginOfElement, std::regex(R"re(<(\w+))re")},
        {Kind::EmptyElement, std::regex(R"re(<\w[^<>]*/>)re")},
    };
    std::vector<String> result;
    for (const auto& [kind, pattern] : pieces)
    {
        for (auto match = std::sregex_iterator(document.begin(), document.end(), pattern);
             match != std::sregex_iterator(); ++match)
        {
            const String start = document.substr(0, static_cast<std::size_t>(match->position()));
            const String piece = match->str();
            std::vector<String> replacements;
            switch (kind)
            {
            case Kind::Attribute:
                for (const char* value : strangeValues)
                {
                    replacements.push_back(" " + match->str(1) + "=\"" + value + "\"");
                }
                replacements.insert(replacements.end(), {"", " strange=\"1\"" + piece});
                break;
            case Kind::BeginOfElement:
                replacements = {piece + " strange=\"1\""};
                break;
            case Kind::EmptyElement:
                replacements = {"",
                                piece + piece,
                                piece + "<Strange/>",
                                piece + "text",
                                piece + "<Includes/>",
                                piece + "<ProcessSettings singleProcess=\"0\"/>"};
                break;
            }
            const String rest = document.substr(start.size() + piece.size());
            for (const String& replacement : replacements)
            {
                result.push_back(fmt::format("{}{}{}", start, replacement, rest));
            }
        }
    }
    return result;
}

/// The numbers of the documents that a schema does not refuse.
std::set<std::size_t> FindValid(const String& schema, const std::vector<String>& documents,
                                const TemporaryDirectory& directory)
{
    String names;
    for (std::size_t i = 0; i < documents.size(); ++i)
    {
        directory.Write("documents/" + std::to_string(i), documents[i]);
    }
    const String command = "cd '" + directory / "documents" +
                           "' && ls | xargs '" XMLLINT "' --noout --schema '" SCHEMA_DIRECTORY "/" + schema + "' 2>&1";
    std::FILE* output = ::popen(command.c_str(), "r");
    std::set<std::size_t> valid;
    std::array<char, 4096> line{};
    String others;
    while (std::fgets(line.data(), line.size(), output) != nullptr)
    {
        const String text = line.data();
        if (text.ends_with(" validates\n"))
        {
            valid.insert(std::stoul(text));
        }
        else if (text.find(schema) != String::npos)
        {
            others += text;
        }
    }
    ::pclose(output);
    EXPECT_EQ(others, "") << "The schema itself is wrong.";
    return valid;
}

using Loader = std::function<void(const String& path)>;

/// What the loader says about a document: nothing, warnings or the reason why it refuses it.
String Load(const Loader& loader, const String& document, const TemporaryDirectory& directory, const CapturedLog& log)
{
    const std::size_t begin = log.GetText().size();
    Environment::Setup();
    String answer;
    try
    {
        loader(directory.Write("loaded/document", document));
        answer = log.GetText().substr(begin);
    }
    catch (const std::exception& exception)
    {
        answer = exception.what();
    }
    Environment::Dispose();
    return answer;
}

void Compare(const String& schema, const Loader& loader, const std::vector<String>& documents)
{
    const TemporaryDirectory directory;
    const CapturedLog log(Commons::Diagnostics::LogLevel::Warning);
    const std::set<std::size_t> valid = FindValid(schema, documents, directory);
    std::size_t refusedCount = 0;
    for (std::size_t i = 0; i < documents.size(); ++i)
    {
        if (valid.contains(i))
        {
            continue;
        }
        ++refusedCount;
        EXPECT_NE(Load(loader, documents[i], directory, log), "") << schema << " refuses this document:\n"
                                                                  << documents[i];
    }
    EXPECT_GT(refusedCount, documents.size() / 4) << "A schema that refuses nothing says nothing.";
}

void ExpectBothTake(const String& schema, const Loader& loader, const String& document)
{
    const TemporaryDirectory directory;
    const CapturedLog log(Commons::Diagnostics::LogLevel::Warning);
    EXPECT_EQ(Load(loader, document, directory, log), "") << document;
    EXPECT_EQ(FindValid(schema, {document}, directory).size(), 1U) << document;
}

String ReadFile(const String& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void LoadSettings(const String& path)
{
    Settings::KiroSettings settings;
    Settings::KiroSettingsLoader::Load(path, settings, false);
}

void LoadConfiguration(const String& path)
{
    Sm::Config::KiroConfiguration configuration;
    Sm::Config::KiroConfigurationLoader::Load(path, false, true, configuration);
}

} // namespace

TEST(SchemaTest, SettingsAreWhatTheLoaderTakes)
{
    ExpectBothTake("settings.xsd", &LoadSettings, wholeSettings);
    Compare("settings.xsd", &LoadSettings, Mutilate(wholeSettings));
}

TEST(SchemaTest, ConfigurationsAreWhatTheLoaderTakes)
{
    ExpectBothTake("configuration.xsd", &LoadConfiguration, wholeConfiguration);
    Compare("configuration.xsd", &LoadConfiguration, Mutilate(wholeConfiguration));
}

TEST(SchemaTest, TheExamplesAreWhatBothTake)
{
    const String directory = SOURCE_DIRECTORY "/examples/water-tanks/system/Default.kiro.";
    ExpectBothTake("settings.xsd", &LoadSettings, ReadFile(directory + "settings"));
    ::setenv("VELA_PATH_PLANT_LIB_DIR", "/lib", 1);
    ExpectBothTake("configuration.xsd", &LoadConfiguration, ReadFile(directory + "config"));
    ::unsetenv("VELA_PATH_PLANT_LIB_DIR");
}

} // namespace Vela::System::Kiro::Internal
