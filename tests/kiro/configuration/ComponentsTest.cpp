#include <Config/KiroConfigurationLoader.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <CapturedLog.hpp>
#include <TemporaryDirectory.hpp>
#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Sm::Config;
using System::Commons::Xml::XmlReader;
using System::Commons::Xml::XmlSerializationContext;
using System::Commons::Xml::XmlSource;
using Testing::CapturedLog;
using Testing::GetThrownMessage;
using Testing::TemporaryDirectory;

namespace
{

Component MakeComponent(const String& name, const String& type, const String& process = {})
{
    Component component(name, type, "L", Settings());
    component.process = process;
    return component;
}

Process MakeProcess(const String& name)
{
    Process process;
    process.name = name;
    return process;
}

/// "name:type@process" of all components.
String Describe(const Components::Map& items)
{
    String text;
    for (const auto& [name, component] : items)
    {
        text += name + ":" + component.type + " in " + component.process + "; ";
    }
    return text;
}

} // namespace

class ComponentsTest : public testing::Test
{
protected:
    ComponentsTest()
    {
        AppDomain::CreateInstance().SetApplicationName("A");
        for (const char* name : {"A", "B"})
        {
            configuration.processes.AddItem(MakeProcess(name));
        }
    }

    String ResolveGeneric(bool singleProcess)
    {
        configuration.components.ResolveMultiProcessItems(configuration.processes, singleProcess);
        return Describe(configuration.components.GetItems());
    }

    KiroConfiguration configuration;
};

TEST_F(ComponentsTest, CopiesGenericComponentsIntoEveryProcess)
{
    Component generic = MakeComponent("G", "T", "*");
    generic.isRequired = true;
    generic.isEnabled = false;
    generic.startOrder = 7;
    generic.hasStartOrder = true;
    generic.settings.path = "/s";
    const CapturedLog log;
    configuration.components.AddItem(generic);
    EXPECT_EQ(configuration.components.GetItems().size(), 0U);
    EXPECT_EQ(ResolveGeneric(false), "G:T in A; G@B:T in B; ");
    Component expected = MakeComponent("G@B", "T", "B");
    EXPECT_TRUE(configuration.components.GetItems().at("G@B").Equals(expected));
    EXPECT_TRUE(log.Contains("Generic component 'G': only name, type and library are copied into the processes"));
}

TEST_F(ComponentsTest, SayWhichGenericComponentHasNoProcess)
{
    AppDomain::CreateInstance().SetApplicationName("Main");
    const CapturedLog log;
    configuration.components.AddItem(MakeComponent("G", "T", "*"));
    EXPECT_EQ(ResolveGeneric(true), "");
    EXPECT_TRUE(log.Contains("Generic component 'G' is not created"));
    EXPECT_FALSE(log.Contains("only name, type and library"));
}

TEST_F(ComponentsTest, CopiesGenericComponentsOnceInASingleProcess)
{
    configuration.components.AddItem(MakeComponent("G", "T", "*"));
    EXPECT_EQ(ResolveGeneric(true), "G:T in A; ");
}

TEST_F(ComponentsTest, PrefersAnExplicitComponentOfTheSameTypeOrName)
{
    const CapturedLog log;
    configuration.components.AddItem(MakeComponent("E", "T", "B"));
    configuration.components.AddItem(MakeComponent("H@B", "X", "A"));
    configuration.components.AddItem(MakeComponent("G", "T", "*"));
    configuration.components.AddItem(MakeComponent("H", "U", "*"));
    EXPECT_EQ(ResolveGeneric(false), "E:T in B; G:T in A; H:U in A; H@B:X in A; ");
    EXPECT_TRUE(log.Contains("Component 'E' of type 'T' was explicitly configured in process 'B' but also through "
                             "generic configuration using '*' as process name."));
    EXPECT_TRUE(log.Contains("Component 'H@B' of type 'X' keeps its name"));
}

TEST_F(ComponentsTest, DropUnusedProcessesBeforeGenericComponentsAreCopied)
{
    for (const char* name : {"External", "Other", "Own"})
    {
        Process process = MakeProcess(name);
        process.isExternal = name == String("External");
        process.binaryPath = name == String("Other") ? "/bin/other"
                             : name == String("Own") ? "/bin/Vela.System.Application"
                                                     : "";
        configuration.processes.AddItem(process);
    }
    configuration.components.AddItem(MakeComponent("C", "X", "A"));
    configuration.components.AddItem(MakeComponent("G", "T", "*"));
    configuration.ResolveMultiProcessItems(false);
    EXPECT_EQ(Describe(configuration.components.GetItems()),
              "C:X in A; G:T in A; G@External:T in External; G@Other:T in Other; ");
    EXPECT_EQ(configuration.processes.GetItems().size(), 3U);
    configuration.processes.RemoveUnusedProcess("Unknown");
    EXPECT_EQ(configuration.processes.GetItems().size(), 3U);
}

TEST_F(ComponentsTest, LetFilesGiveABuiltInComponentItsProcessAndSettingsOnly)
{
    KiroConfigurationLoader::AddStaticComponents(configuration, {{"S", "Built::In"}, {"U", "Built::Too"}});
    Component fromFile = MakeComponent("S", "Other", "B");
    fromFile.settings.path = "/s";
    fromFile.isRequired = true;
    fromFile.isFinal = true;
    configuration.components.AddItem(fromFile);
    configuration.components.AddItem(MakeComponent("S", "Other"));
    const Component& component = configuration.components.GetItems().at("S");
    EXPECT_EQ(component.type + component.library, "Built::In");
    EXPECT_EQ(component.process + component.settings.path, "B/s");
    EXPECT_TRUE(component.isStatic && component.isEnabled && !component.isRequired && !component.isFinal);
    EXPECT_EQ(component.startOrder, -1);
}

TEST_F(ComponentsTest, LoadAddsCompletesAndResolves)
{
    const TemporaryDirectory directory;
    const String path = directory.Write("c.config", "<KiroConfigurationDocument><Processes><Process name='Unused'/>"
                                                    "</Processes><Components><Component name='C' type='T' library='L' "
                                                    "process='B'/><Component name='G' type='U' library='L' "
                                                    "process='*'/></Components></KiroConfigurationDocument>");
    KiroConfigurationLoader::Load(path, false, true, configuration);
    EXPECT_EQ(Describe(configuration.components.GetItems()), "C:T in B; G@B:U in B; ");
    EXPECT_EQ(configuration.processes.GetItems().size(), 1U);
}

TEST_F(ComponentsTest, NeedAnApplicationDomain)
{
    configuration.components.AddItem(MakeComponent("G", "T", "*"));
    Singleton<AppDomain>::DisposeInstance();
    EXPECT_EQ(GetThrownMessage<Exception>([&] { ResolveGeneric(false); }),
              "Singleton instance of type 'Vela::AppDomain' was not created yet!");
}

TEST(Component, IsOverwrittenOnlyByOneOfItsNameAndTypeUnlessItIsFinal)
{
    XmlReader reader(std::make_shared<const XmlSource>(XmlSource{"/a.config", {}}), "<Component/>");
    XmlSerializationContext context("/a.config", false);
    Component component = MakeComponent("C", "T", "P");
    component.startOrder = 3;
    component.settings.path = "/s";
    const auto getMessage = [&](const Component& other)
    {
        return GetThrownMessage<XmlException>([&] { component.Overwrite(reader, context, other); });
    };

    EXPECT_EQ(getMessage(MakeComponent("D", "U")),
              "Component 'C' can not overwritten, because the names are diffrent! (/a.config:1)");
    EXPECT_EQ(getMessage(MakeComponent("C", "U")),
              "Component 'C' can not overwritten, because the types are diffrent! (/a.config:1)");
    Component other("C", "T", "M", Settings("/t"));
    other.process = "Q";
    other.isRequired = true;
    other.isEnabled = false;
    other.isFinal = true;
    other.startOrder = 9;
    component.Overwrite(reader, context, other);
    EXPECT_EQ(component.library + component.process + component.settings.path, "MQ/s");
    EXPECT_TRUE(component.isRequired && !component.isEnabled && component.isFinal);
    EXPECT_EQ(component.startOrder, 3);
    EXPECT_EQ(getMessage(other), "Component 'C' can not overwritten, because the flag 'final' is set! (/a.config:1)");
}
