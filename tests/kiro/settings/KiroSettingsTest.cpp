#include <Settings/KiroSettingsLoader.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

#include <CapturedLog.hpp>
#include <CutDocument.hpp>
#include <ScopedTrustPolicy.hpp>
#include <TemporaryDirectory.hpp>
#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

#include <filesystem>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Settings;
using System::Commons::Environment;
using System::Commons::Diagnostics::LogLevel;
using System::Commons::Io::FileTrust;
using System::Commons::Io::TrustedFile;
using System::Commons::Io::TrustPolicy;
using Testing::CapturedLog;
using Testing::GetThrownMessage;
using Testing::ScopedTrustPolicy;
using Testing::TemporaryDirectory;

class KiroSettingsTest : public testing::Test
{
protected:
    KiroSettingsTest()
    {
        Environment::Setup();
    }

    ~KiroSettingsTest() override
    {
        Environment::Dispose();
    }

    /// Loads a document with this content.
    void Load(const String& content)
    {
        KiroSettingsLoader::Load(
            directory.Write("root.settings", "<KiroSettingsDocument>" + content + "</KiroSettingsDocument>"), settings,
            false);
    }

    String GetMessage(const String& content)
    {
        return GetThrownMessage<XmlException>([&] { Load(content); });
    }

    TemporaryDirectory directory;
    const String position = " (" + (directory / "root.settings") + ":1)";
    KiroSettings settings;
};

TEST_F(KiroSettingsTest, DecideWhatHappensToFilesThatOthersCanChange)
{
    const ScopedTrustPolicy documents(TrustedFile::Document, TrustPolicy::Warn);
    const ScopedTrustPolicy securitySettings(TrustedFile::SecuritySettings, TrustPolicy::Refuse);
    const ScopedTrustPolicy libraries(TrustedFile::Library, TrustPolicy::Warn);
    const ScopedTrustPolicy executables(TrustedFile::Executable, TrustPolicy::Warn);
    const ScopedTrustPolicy runtimeDirectory(TrustedFile::RuntimeDirectory, TrustPolicy::Refuse);
    const CapturedLog log;
    const String included = directory.Write("included.settings", "<KiroSettingsDocument/>");
    std::filesystem::permissions(included, std::filesystem::perms(0666));
    const String include = R"(<Includes><Include path="included.settings"/></Includes>)";
    Load(include);
    EXPECT_TRUE(log.Contains("File '" + included + "' can be changed by other users: '" + included +
                             "' is writable for everybody (mode 666)."));

    Load(R"(<FileTrust securitySettings="Warn" libraries="Refuse" executables="Refuse" runtimeDirectory="Ignore"/>)");
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::Document), TrustPolicy::Warn);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::SecuritySettings), TrustPolicy::Warn);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::Library), TrustPolicy::Refuse);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::Executable), TrustPolicy::Refuse);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::RuntimeDirectory), TrustPolicy::Ignore);

    const String refuse = R"(<FileTrust documents="Refuse"/>)";
    EXPECT_THROW(Load(refuse + include), InvalidOperationException) << "for what it includes";
    FileTrust::SetPolicy(TrustedFile::Document, TrustPolicy::Warn);
    const String itself =
        directory.Write("itself.settings", "<KiroSettingsDocument>" + refuse + "</KiroSettingsDocument>");
    std::filesystem::permissions(itself, std::filesystem::perms(0666));
    EXPECT_THROW(KiroSettingsLoader::Load(itself, settings, false), InvalidOperationException);
    EXPECT_THROW(Load(R"(<FileTrust documents="Maybe"/>)"), Exception);
}

TEST_F(KiroSettingsTest, RefusesADocumentThatIsCutOffAnywhere)
{
    const String text =
        "<KiroSettingsDocument>\n<LogSettings logDir='log' logLevel='Debug'/><ProcessSettings singleProcess='false' "
        "startWaitTime='10s' slowStepTime='1min'/><EnvironmentVariables><EnvironmentVariable name='VELA_PATH_X' "
        "value='a&lt;b'/></EnvironmentVariables></KiroSettingsDocument>";
    Testing::ExpectEveryCutToBeRefused(directory, "root.settings", text,
                                       [this]
                                       {
                                           KiroSettings read;
                                           KiroSettingsLoader::Load(directory / "root.settings", read, false);
                                       });
}

TEST_F(KiroSettingsTest, AreAllDefaultsInAnEmptyDocument)
{
    Load("");
    EXPECT_FALSE(settings.GetProcessSettings().IsSingleProcess());
    EXPECT_EQ(settings.GetProcessSettings().GetStartWaitTime().count(), 6000);
    EXPECT_EQ(settings.GetProcessSettings().GetStopWaitTime().count(), 3000);
    EXPECT_EQ(settings.GetProcessSettings().GetWatchdogIdleTime().count(), 1000);
    EXPECT_EQ(settings.GetProcessSettings().GetWatchdogDelayTime().count(), 1000);
    EXPECT_EQ(settings.GetProcessSettings().GetSlowStepTime().count(), 10000);
    EXPECT_EQ(settings.GetProcessSettings().GetDefaultProcessAffinityMask(), -1);
    EXPECT_EQ(settings.GetRscSettings().GetPath(), "Rsc.settings");
    EXPECT_FALSE(settings.GetNmSettings().HasPath());
    EXPECT_FALSE(settings.GetSecuritySettings().HasPath());
    EXPECT_EQ(settings.GetLogSettings().GetLogLevel(), LogLevel::None);
    EXPECT_FALSE(settings.GetLogSettings().HasLogDir());
}

TEST_F(KiroSettingsTest, ReadEverySectionAndResolvePathsWithTheVariablesOfTheSameDocument)
{
    Load("<LogSettings logLevel='Debug' logDir='${LOGS}/x' configFile='log.xml'/>"
         "<RscSettings path='${REL}/Rsc.settings'/><NmSettings path='../nm'/><SecuritySettings path='/sec'/>"
         "<ProcessSettings singleProcess='true' startWaitTime='1s' stopWaitTime='20' watchdogIdleTime='30ms' "
         "watchdogDelayTime='1min' slowStepTime='2s' defaultProcessAffinityMask='+3'/>"
         "<EnvironmentVariables><EnvironmentVariable name='LOGS' value='/var/log'/>"
         "<EnvironmentVariable name='REL' value='etc'/></EnvironmentVariables>");
    EXPECT_EQ(settings.GetLogSettings().GetLogLevel(), LogLevel::Debug);
    EXPECT_TRUE(settings.GetLogSettings().HasLogDir());
    EXPECT_EQ(settings.GetLogSettings().GetLogDir(), "/var/log/x");
    EXPECT_EQ(settings.GetLogSettings().GetConfigFile(), directory / "log.xml");
    EXPECT_EQ(settings.GetRscSettings().GetPath(), directory / "etc/Rsc.settings");
    EXPECT_EQ(settings.GetNmSettings().GetPath(), (directory.GetPath().parent_path() / "nm").string());
    EXPECT_EQ(settings.GetSecuritySettings().GetPath(), "/sec");
    const ProcessSettings& process = settings.GetProcessSettings();
    EXPECT_TRUE(process.IsSingleProcess());
    EXPECT_EQ(process.GetStartWaitTime().count(), 1000);
    EXPECT_EQ(process.GetStopWaitTime().count(), 20);
    EXPECT_EQ(process.GetWatchdogIdleTime().count(), 30);
    EXPECT_EQ(process.GetWatchdogDelayTime().count(), 60000);
    EXPECT_EQ(process.GetSlowStepTime().count(), 2000);
    EXPECT_EQ(process.GetDefaultProcessAffinityMask(), 3);

    settings.GetEnvironmentVariables().AddVariable(EnvironmentVariable("LOGS", "/new", true), false);
    settings.ResolveAndPublish(true);
    EXPECT_EQ(settings.GetLogSettings().GetLogDir(), "/new/x");
}

TEST_F(KiroSettingsTest, RefuseInvalidValuesWithTheirPlace)
{
    EXPECT_EQ(GetMessage("<ProcessSettings startWaitTime='1s'/>"),
              "GetAttributeValue failed for mandatory attribute: singleProcess elementName: ProcessSettings" +
                  position);
    EXPECT_EQ(GetMessage("<ProcessSettings singleProcess='1' startWaitTime='soon'/>"),
              "TryGetAttributeValueDuration failed for attribute 'startWaitTime' in element 'ProcessSettings': invalid "
              "duration format in value 'soon'" +
                  position);
    EXPECT_EQ(GetMessage("<ProcessSettings singleProcess='1' defaultProcessAffinityMask='0x3'/>"),
              "Cast of attribute defaultProcessAffinityMask to int32 failed value: 0x3" + position);
    EXPECT_EQ(GetMessage("<LogSettings logLevel='Loud'/>"),
              "Invalid string for Enum 'Vela::System::Commons::Diagnostics::LogLevel' occurs: Loud" + position);
    EXPECT_EQ(GetMessage("<NmSettings path='${NOWHERE}/nm'/>"),
              "The path in attribute 'path' cannot be resolved: The environment variable 'NOWHERE' in '${NOWHERE}/nm' "
              "is not defined." +
                  position);
}

TEST_F(KiroSettingsTest, CollectOverAllFilesWhereOnlySomePathsFallBackToTheirDefault)
{
    directory.Write("sub/part.settings",
                    "<KiroSettingsDocument><LogSettings logDir='' configFile='log.xml'/><RscSettings/><NmSettings/>"
                    "<SecuritySettings/><ProcessSettings singleProcess='false'/></KiroSettingsDocument>");
    Load("<Includes><Include path='sub/part.settings'/></Includes><LogSettings logLevel='Trace' logDir='logs'/>"
         "<RscSettings path='r'/><NmSettings path='n'/><SecuritySettings path='s'/>"
         "<ProcessSettings singleProcess='true' startWaitTime='5'/>");
    EXPECT_EQ(settings.GetLogSettings().GetLogLevel(), LogLevel::Trace);
    EXPECT_EQ(settings.GetLogSettings().GetLogDir(), directory / "logs");
    EXPECT_EQ(settings.GetLogSettings().GetConfigFile(), directory / "sub/log.xml");
    EXPECT_EQ(settings.GetRscSettings().GetPath(), "Rsc.settings");
    EXPECT_FALSE(settings.GetNmSettings().HasPath());
    EXPECT_EQ(settings.GetSecuritySettings().GetPath(), directory / "s");
    EXPECT_FALSE(settings.GetProcessSettings().IsSingleProcess());
    EXPECT_EQ(settings.GetProcessSettings().GetStartWaitTime().count(), 5);
}

TEST_F(KiroSettingsTest, TolerateUnknownElementsWithAWarning)
{
    const CapturedLog log;
    Load("<Unknown x='1'><y/></Unknown><LogSettings logLevel='Info'><z/></LogSettings>");
    EXPECT_EQ(settings.GetLogSettings().GetLogLevel(), LogLevel::Info);
    EXPECT_TRUE(log.Contains("Element 'Unknown' is not known here, it is skipped." + position));
    EXPECT_TRUE(log.Contains("Element 'z' is not known inside 'LogSettings', it is skipped." + position));
}

TEST_F(KiroSettingsTest, AreNeverWritten)
{
    System::Commons::Xml::XmlWriter writer;
    System::Commons::Xml::XmlSerializationContext context("/x", false);
    EXPECT_EQ(GetThrownMessage<NotImplementedException>([&] { settings.WriteXml(writer, context); }), "WriteXml");
}
