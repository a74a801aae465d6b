#include <Config/KiroConfigurationLoader.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

#include <CutDocument.hpp>
#include <TemporaryDirectory.hpp>
#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Sm::Config;
using System::Commons::Environment;
using Testing::GetThrownMessage;
using Testing::TemporaryDirectory;

class KiroConfigurationTest : public testing::Test
{
protected:
    KiroConfigurationTest()
    {
        Environment::Setup();
        Environment::SetVariable("CONFIG_BIN", "/opt/bin");
    }

    ~KiroConfigurationTest() override
    {
        Environment::Dispose();
    }

    String Write(const String& name, const String& content) const
    {
        return directory.Write(name, "<KiroConfigurationDocument>" + content + "</KiroConfigurationDocument>");
    }

    /// Reads a document with this content, without completing it.
    KiroConfiguration Read(const String& content) const
    {
        KiroConfiguration configuration;
        KiroConfigurationLoader::Load("KiroConfigurationDocument", Write("root.config", content), configuration);
        return configuration;
    }

    template <typename E = XmlException>
    String GetMessage(const String& content) const
    {
        return GetThrownMessage<E>([&] { static_cast<void>(Read(content)); });
    }

    TemporaryDirectory directory;
    const String root = directory / "root.config";
    const String position = " (" + root + ":1)";
};

TEST_F(KiroConfigurationTest, RefusesADocumentThatIsCutOffAnywhere)
{
    const String part =
        "<?xml version='1.0'?><!-- a part --><KiroConfigurationDocument><Components><Component name='C' "
        "type='T' library='L' process='P' startOrder='5'><Settings path='c&amp;d.settings'/></Component>"
        "</Components></KiroConfigurationDocument>";
    const String whole =
        "<KiroConfigurationDocument><Includes><Include path='part.config'/></Includes><Processes>"
        "<Process name='P' core='2' args='-v &quot;a b&quot;'/></Processes><Libraries><Library name='L' "
        "binaryPath='${CONFIG_BIN}/libL.so'><Dependencies><Dependency binaryPath='d.so'/></Dependencies>"
        "</Library></Libraries></KiroConfigurationDocument>";
    const auto load = [&]
    {
        KiroConfiguration configuration;
        KiroConfigurationLoader::Load(root, false, true, configuration);
    };
    directory.Write("part.config", part);
    Testing::ExpectEveryCutToBeRefused(directory, "root.config", whole, load);
    Testing::ExpectEveryCutToBeRefused(directory, "part.config", part, load);
}

TEST_F(KiroConfigurationTest, ReadsEveryAttribute)
{
    const auto configuration =
        Read("<Processes><Process name='P' localTcpPort='4711' processOwner='me' workingDirectory='work' "
             "settingsPath='../p.settings' binaryPath='${CONFIG_BIN}/p' core='2' debugBreak='true' external='1' "
             "args='-v &quot;a b&quot;'/></Processes>\n"
             "<Libraries><Library name='L' binaryPath='libL.so'><Dependencies><Dependency binaryPath='z.so'/>"
             "<Dependency binaryPath='/a.so'/></Dependencies></Library></Libraries>\n"
             "<Components><Component name='C' type='T' library='L' process='P' isRequired='true' isEnabled='false' "
             "final='true' startOrder='0'><Settings path='c.settings'/></Component></Components>");
    const Process& process = configuration.processes.GetItems().at("P");
    EXPECT_EQ(process.localTcpPort, 4711);
    EXPECT_EQ(process.processOwner, "me");
    EXPECT_EQ(process.workingDirectory, directory / "work");
    EXPECT_EQ(process.settingsPath, (directory.GetPath().parent_path() / "p.settings").string());
    EXPECT_EQ(process.binaryPath, "/opt/bin/p");
    EXPECT_EQ(process.core, 2);
    EXPECT_TRUE(process.debugBreak && process.isExternal);
    EXPECT_EQ(process.args, "-v \"a b\"");
    EXPECT_EQ(process.position.ToString(), root + ":1");
    const Library& library = configuration.libraries.GetItems().at("L");
    EXPECT_EQ(library.binaryPath, directory / "libL.so");
    EXPECT_EQ(library.GetDependencies().GetBinaryPaths(), (std::vector<String>{directory / "z.so", "/a.so"}));
    const Component& component = configuration.components.GetItems().at("C");
    EXPECT_EQ(component.type + component.library + component.process, "TLP");
    EXPECT_TRUE(component.isRequired && !component.isEnabled && component.isFinal);
    EXPECT_TRUE(component.hasStartOrder && component.startOrder == 0);
    EXPECT_EQ(component.settings.path, directory / "c.settings");
    EXPECT_EQ(component.position.ToString(), root + ":3");
}

TEST_F(KiroConfigurationTest, LeavesDefaultsWhereNothingIsWritten)
{
    const auto configuration = Read("<Processes><Process name='P'/></Processes><Components>"
                                    "<Component name='C' type='T' library=''/></Components>");
    const Process& process = configuration.processes.GetItems().at("P");
    EXPECT_EQ(process.settingsPath + process.binaryPath + process.workingDirectory, "");
    EXPECT_FALSE(process.debugBreak || process.isExternal);
    const Component& component = configuration.components.GetItems().at("C");
    EXPECT_EQ(component.process + component.settings.path, "");
    EXPECT_TRUE(component.isEnabled && !component.isRequired && !component.isFinal && !component.isStatic);
    EXPECT_TRUE(!component.hasStartOrder && component.startOrder == -1);
}

TEST_F(KiroConfigurationTest, RefusesNamesThatAreDeclaredTwiceAlsoInDifferentFiles)
{
    const String part = Write("part.config", "\n<Processes><Process name='P'/></Processes>");
    EXPECT_EQ(GetMessage("<Includes><Include path='part.config'/></Includes>"
                         "<Processes><Process name='P'/></Processes>"),
              "Process 'P' is already declared! (" + part + ":2, included from " + root + ":1; declared before in " +
                  root + ":1)");
    const String twice = " (" + root + ":1; declared before in " + root + ":1)";
    EXPECT_EQ(GetMessage("<Libraries><Library name='L' binaryPath='a'/><Library name='L' binaryPath='b'/></Libraries>"),
              "Library 'L' is already declared!" + twice);
    EXPECT_EQ(GetMessage("<Libraries><Library name='L' binaryPath='a'><Dependencies><Dependency binaryPath='/d'/>"
                         "<Dependency binaryPath='/d'/></Dependencies></Library></Libraries>"),
              "Dependency '/d' is already declared!" + position);
    for (const char* process : {"", "process='*'"})
    {
        EXPECT_EQ(GetMessage<InvalidConfigException>("<Components><Component name='C' type='T' library='L'/>"
                                                     "<Component name='C' type='U' library='L' " +
                                                     String(process) + "/></Components>"),
                  "Duplicated component name occurs: 'C'" + twice);
    }
}

TEST_F(KiroConfigurationTest, RefusesMissingAndInvalidValuesWithTheirPlace)
{
    EXPECT_EQ(GetMessage("<Libraries><Library name='L'/></Libraries>"),
              "GetAttributeValue failed for mandatory attribute: binaryPath elementName: Library" + position);
    EXPECT_EQ(GetMessage("<Libraries><Library name='L' binaryPath='a'><Dependencies><Dependency binaryPath=''/>"
                         "</Dependencies></Library></Libraries>"),
              "Dependency's binaryPath must not be empty." + position);
    EXPECT_EQ(GetMessage("<Components><Component name='C' type='T' library='L' startOrder='-1'/></Components>"),
              "The start order of component 'C' must not be negative: -1" + position);
    EXPECT_EQ(GetMessage("<Components><Component name='C' type='T' library='L'><Settings/></Component></Components>"),
              "GetAttributeValue failed for mandatory attribute: path elementName: Settings" + position);
    EXPECT_EQ(GetMessage("<Processes><Process name='P' core='two'/></Processes>"),
              "Cast of attribute core to int32 failed value: two" + position);
    EXPECT_EQ(GetMessage("<Libraries><Library name='L' binaryPath='${CONFIG_NONE}/a'/></Libraries>"),
              "The path in attribute 'binaryPath' cannot be resolved: The environment variable 'CONFIG_NONE' in "
              "'${CONFIG_NONE}/a' is not defined." +
                  position);
}

TEST_F(KiroConfigurationTest, ComparesByWhatIsConfigured)
{
    const String content = "<Processes><Process name='P' args='a'/></Processes>"
                           "<Libraries><Library name='L' binaryPath='a'><Dependencies><Dependency binaryPath='/d'/>"
                           "</Dependencies></Library></Libraries><Components><Component name='C' type='T' library='L'>"
                           "<Settings path='s'/></Component><Component name='G' type='T' library='L' process='*'/>"
                           "</Components>";
    const auto configuration = Read(content);
    EXPECT_TRUE(configuration.Equals(Read("\n\n" + content)));
    const std::pair<const char*, const char*> changes[] = {
        {"args='a'", "args='b'"}, {"'P'", "'Q'"},
        {"'/d'", "'/e'"},         {"binaryPath='a'", "binaryPath='b'"},
        {"'s'", "'t'"},           {"type='T'", "type='U'"},
        {"name='G'", "name='H'"},
    };
    for (const auto& [from, to] : changes)
    {
        String changed = content;
        changed.replace(changed.find(from), String(from).size(), to);
        EXPECT_FALSE(configuration.Equals(Read(changed))) << to;
    }
    EXPECT_FALSE(configuration.Equals(KiroConfiguration()));
}

TEST_F(KiroConfigurationTest, IsNeverWritten)
{
    System::Commons::Xml::XmlWriter writer;
    System::Commons::Xml::XmlSerializationContext context("/x", false);
    KiroConfiguration configuration;
    EXPECT_EQ(GetThrownMessage<NotImplementedException>([&] { configuration.WriteXml(writer, context); }), "WriteXml");
}

TEST_F(KiroConfigurationTest, ReadsManyFilesIntoOneConfiguration)
{
    for (int file = 0; file < 100; ++file)
    {
        Write(fmt::format("d/{}.config", file),
              fmt::format("<Components><Component name='C{0}' type='T' library='L'/></Components>", file));
    }
    Write("second.config", "<Components><Component name='S' type='T' library='L'/></Components>");
    KiroConfiguration configuration;
    KiroConfigurationLoader::Load("KiroConfigurationDocument",
                                  {{Write("root.config", "<Includes><Include path='d/*.config'/></Includes>"),
                                    directory / "second.config", directory / "d/7.config"}},
                                  configuration);
    EXPECT_EQ(configuration.components.GetItems().size(), 101U);
}
