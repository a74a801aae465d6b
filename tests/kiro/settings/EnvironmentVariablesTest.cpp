#include <Settings/EnvironmentVariables.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

#include <CapturedLog.hpp>
#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Settings;
using System::Commons::Environment;
using System::Commons::Xml::XmlConfigDocument;
using System::Commons::Xml::XmlSerializationContext;
using System::Commons::Xml::XmlWriter;
using Testing::CapturedLog;
using Testing::GetThrownMessage;

class EnvironmentVariablesTest : public testing::Test
{
protected:
    EnvironmentVariablesTest()
    {
        Environment::Setup();
        Environment::SetVariable("OUTSIDE", "outer");
    }

    ~EnvironmentVariablesTest() override
    {
        Environment::Dispose();
    }

    /// Reads definitions as the file of that path, each the attributes of one element.
    void Read(const std::vector<String>& definitions, const String& path = "/etc/sys/a.settings")
    {
        String text = "<EnvironmentVariables>\n";
        for (const String& definition : definitions)
        {
            text += "<EnvironmentVariable " + definition + "/>\n";
        }
        XmlConfigDocument("EnvironmentVariables", variables).LoadText(path, text + "</EnvironmentVariables>");
    }

    String ReadAndPublish(const std::vector<String>& definitions, const String& name)
    {
        Read(definitions);
        variables.Publish(false);
        return Get(name);
    }

    static String Get(const String& name)
    {
        return Environment::GetVariableValueOr(name, "(none)");
    }

    String WriteText()
    {
        XmlWriter writer;
        XmlSerializationContext context("/etc/sys/a.settings", false);
        writer.WriteStartElement("V");
        variables.WriteXml(writer, context);
        writer.WriteEndElement();
        return writer.GetText();
    }

    EnvironmentVariables variables;
};

TEST_F(EnvironmentVariablesTest, PublishesDependenciesFirstAndTheFinalValueOfEach)
{
    EXPECT_EQ(ReadAndPublish({"name='A' value='${B}-${OUTSIDE}-$$'", "name='B' value='${C}'", "name='C' value='basic'",
                              "name='C' value='forced' override='true'"},
                             "A"),
              "forced-outer-$");
}

TEST_F(EnvironmentVariablesTest, AcceptsABasicDefinitionTwiceOnlyWithTheSameValue)
{
    const CapturedLog log;
    Read({"name='A' value='1'", "name='A' value='1'"});
    EXPECT_TRUE(log.Contains("Environment variable 'A' was defined twice, but values are equal"));
    EXPECT_EQ(GetThrownMessage<XmlException>([&] { Read({"name='A' value='2'"}); }),
              "Environment variable 'A' is already defined! (/etc/sys/a.settings:2)");
    EXPECT_TRUE(log.Contains("Environment variable 'A' was defined twice with different values"));
    EXPECT_EQ(variables.GetVariables().at("A").GetValue(), "1");
}

TEST_F(EnvironmentVariablesTest, LetsTheLastRedefinitionWin)
{
    const CapturedLog log;
    EXPECT_EQ(ReadAndPublish({"name='A' value='z' redefine='true'", "name='A' value='x'",
                              "name='A' value='z' redefine='1'", "name='A' value='y' redefine='true'"},
                             "A"),
              "y");
    EXPECT_TRUE(log.Contains("Environment variable 'A' was redefined twice, but values are equal"));
    EXPECT_TRUE(log.Contains("Environment variable 'A' was redefined twice with different values, new value is: y"));
    Read({"name='B' value='x' redefine='true'"});
    EXPECT_EQ(GetThrownMessage<InvalidConfigException>([&] { variables.Publish(false); }),
              "Environment variable 'B' was redefined without a basic definition! (/etc/sys/a.settings:2)");
}

TEST_F(EnvironmentVariablesTest, LetsTheLastOverrideWinAlsoWithoutABasicDefinition)
{
    const CapturedLog log;
    EXPECT_EQ(ReadAndPublish({"name='D' value='1' override='true'", "name='D' value='1' overridden='true'",
                              "name='D' value='${Z}2' override='true'", "name='Z' value='z'"},
                             "D"),
              "z2");
    EXPECT_TRUE(log.Contains("Environment variable 'D' was overriden several times, but values are equal"));
    EXPECT_TRUE(
        log.Contains("Environment variable 'D' was overriden twice with different values, new value is: ${Z}2"));
    EXPECT_TRUE(log.Contains("Overridden variable 'D' does not have a base definition."));
    Environment::SetVariable("D", "run time");
    variables.Publish(true);
    EXPECT_EQ(Get("D"), "z2");
}

TEST_F(EnvironmentVariablesTest, ReadsTheOlderAttributeOnlyWhenTheNewerIsAbsent)
{
    Read({"name='A' value='1' override='false' overridden='true'", "name='B' value='1' overridden='true'"});
    EXPECT_TRUE(variables.GetVariables().contains("A"));
    EXPECT_TRUE(variables.GetOverriddenVariables().contains("B"));
    EXPECT_EQ(GetThrownMessage<XmlException>([&] { Read({"name='C' value='1' override='true' redefine='true'"}); }),
              "Environment variable 'C' sets attribute 'redefine' and 'override' to 'true', this is not supported "
              "(/etc/sys/a.settings:2)");
}

TEST_F(EnvironmentVariablesTest, RefusesWhatCannotBeResolved)
{
    Read({"name='A' value='${B}'", "name='B' value='x${A}'"});
    EXPECT_EQ(GetThrownMessage<InvalidConfigException>([&] { variables.Publish(false); }),
              "Environment variable 'B' causes a circular dependency of variable 'A' (/etc/sys/a.settings:3)");
    variables = EnvironmentVariables();
    Read({"name='A' value='${ONLY_OVERRIDE}'", "name='ONLY_OVERRIDE' value='x' override='true'"});
    EXPECT_EQ(GetThrownMessage<ArgumentException>([&] { variables.Publish(false); }),
              "Cannot publish environment variable 'ONLY_OVERRIDE' because it does not exists.");
    EXPECT_EQ(GetThrownMessage<XmlException>([&] { Read({"name='X' value='${OPEN'"}); }),
              "Environment variable 'X' has an invalid value: A placeholder in '${OPEN' is not closed. "
              "(/etc/sys/a.settings:2)");
    variables = EnvironmentVariables();
    Read({"name='A=B' value='1'"});
    EXPECT_THROW(variables.Publish(false), InvalidConfigException);
}

TEST_F(EnvironmentVariablesTest, BoundsTheChainOfDependencies)
{
    std::vector<String> definitions;
    for (std::size_t index = 0; index <= EnvironmentVariables::maxDependencyDepth; ++index)
    {
        definitions.push_back(fmt::format("name='V{:05}' value='${{V{:05}}}'", index, index + 1));
    }
    definitions.push_back(fmt::format("name='V{:05}' value='end'", definitions.size()));
    Read(definitions);
    EXPECT_THROW(variables.Publish(false), InvalidConfigException);
}

TEST_F(EnvironmentVariablesTest, PublishesAgainOnlyWhenReset)
{
    Read({"name='A' value='${OUTSIDE}'", "name='R' value='1'", "name='R' value='${OUTSIDE}' redefine='true'"});
    variables.Publish(false);
    Environment::SetVariable("OUTSIDE", "changed");
    variables.Publish(false);
    EXPECT_EQ(Get("A"), "outer");
    EXPECT_EQ(Get("R"), "changed");
    variables.Publish(true);
    EXPECT_EQ(Get("A"), "changed");
    EnvironmentVariable published("P", "1", false);
    published.ResolveAndPublish();
    EXPECT_EQ(GetThrownMessage<InvalidOperationException>([&] { published.Publish(); }),
              "Environment variable 'P' was published yet.");
}

TEST_F(EnvironmentVariablesTest, KeepsOldNamesAliveThroughFilesForDeprecatedNames)
{
    Read({"name='NEW' value='n'"});
    Read({"name='OLD' value='${NEW}'", "name='OTHER' value='x${NEW}'"}, "/etc/sys/Deprecated.kiro.settings");
    Read({"name='OLDER' value='${OLD}'"}, "/etc/sys/Local.deprecated.kiro.settings");
    Read({"name='NOT_OLD' value='${NEW}'"}, "/etc/sys/other.kiro.settings");
    Read({"name='OLDER' value='forced' override='true'"}, "/etc/sys/later.settings");
    String current = "(none)";
    EXPECT_TRUE(variables.ResolveDeprecatedVariableName("OLD", current));
    EXPECT_EQ(current, "NEW");
    EXPECT_FALSE(variables.ResolveDeprecatedVariableName("OTHER", current));
    EXPECT_FALSE(variables.ResolveDeprecatedVariableName("NOT_OLD", current));
    EXPECT_EQ(current, "NEW");
    variables.Publish(false);
    for (const char* name : {"NEW", "OLD", "OLDER", "NOT_OLD"})
    {
        EXPECT_EQ(Get(name), "forced") << name;
    }
}

TEST_F(EnvironmentVariablesTest, RefusesAnOverrideOfOldNamesThatLeadInACircle)
{
    Read({"name='A' value='${B}'", "name='B' value='${C}'", "name='C' value='${B}'"},
         "/etc/sys/Deprecated.kiro.settings");
    EXPECT_THROW(Read({"name='A' value='x' override='true'"}), InvalidConfigException);
}

TEST_F(EnvironmentVariablesTest, MakesPathsAbsoluteAgainstTheirFile)
{
    Read({"name='VELA_PATH_A' value='../lib'", "name='VELA_PATH_B' value='${VELA_PATH_A}/b'",
          "name='VELA_PATH_C' value='${REL}'", "name='VELA_PATH_D' value=''", "name='VELA_PATH_E' value='/x'",
          "name='REL' value='some/dir'"});
    variables.Publish(false);
    EXPECT_EQ(Get("VELA_PATH_A"), "/etc/lib");
    EXPECT_EQ(Get("VELA_PATH_B"), "/etc/lib/b");
    EXPECT_EQ(Get("VELA_PATH_C"), "/etc/sys/some/dir");
    EXPECT_EQ(Get("VELA_PATH_D"), "");
    EXPECT_EQ(Get("VELA_PATH_E"), "/x");
    EXPECT_EQ(Get("REL"), "some/dir");
}

TEST_F(EnvironmentVariablesTest, WritesBasicAndOverridingDefinitionsAsTheyWereWritten)
{
    Read({"name='B' value='${A}&amp;'", "name='A' value='1'", "name='A' value='2' override='true'",
          "name='A' value='3' redefine='true'"});
    EXPECT_EQ(WriteText(), "<V>\n"
                           "    <EnvironmentVariable name=\"A\" value=\"1\"/>\n"
                           "    <EnvironmentVariable name=\"B\" value=\"${A}&amp;\"/>\n"
                           "    <EnvironmentVariable name=\"A\" value=\"2\" override=\"true\"/>\n"
                           "</V>\n");
}

TEST_F(EnvironmentVariablesTest, KnowsItsKindsOfNamesAndValues)
{
    EXPECT_TRUE(EnvironmentVariable("VELA_PACKAGE:x", "true", false).IsComponentVariable());
    EXPECT_FALSE(EnvironmentVariable("VELA_PATH_X", "True", false).IsComponentVariable());
    EXPECT_TRUE(EnvironmentVariable("VELA_FEATURE:x", "true", false).GetBoolValue());
    EXPECT_FALSE(EnvironmentVariable("VELA_FEATURE:x", "1", false).GetBoolValue());
    EXPECT_TRUE(EnvironmentVariable::HasAnyPrefix("VELA_COMPONENT:x"));
    EXPECT_FALSE(EnvironmentVariable::HasAnyPrefix("VELA_FEATURE:x"));
}
