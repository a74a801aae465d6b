#include "KiroctlFixture.hpp"

#include <elf.h>
#include <sys/stat.h>

#include <cstddef>
#include <set>

namespace Vela::Testing
{

namespace
{

class CheckTest : public KiroctlTest
{
protected:
    CheckTest()
    {
        // Who else may write into the build tree is its owner's choice.
        system.WriteSettings(trustEverybody);
    }

    /// What is found, one per line: "K1005 Default.kiro.settings:3".
    std::string Find(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> arguments{"check"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.emplace_back("--json");
        const Result result = Run(arguments);
        answer = Json::parse(result.output, nullptr, false);
        EXPECT_TRUE(answer.is_object()) << result.output;
        std::string found;
        for (const Json& finding : answer["findings"])
        {
            const std::string file = finding["file"];
            produced.insert(finding["code"].get<std::string>());
            found += finding["code"].get<std::string>() + " " + file.substr(file.rfind('/') + 1) + ":" +
                     finding["line"].dump() + "\n";
        }
        EXPECT_EQ(result.exitCode, answer["errors"] == 0 ? 0 : 1) << result.output;
        return found;
    }

    void WriteSettingsDefects()
    {
        system.WriteSettings(R"(<Includes><Include path="more.settings"/><Include path="gone.settings"/>
<Include path="${NOWHERE}"/><Include path="other.settings"/></Includes>
<LogSettings logLevel="Loud" colour="red"/>
<ProcessSettings startWaitTime="soon"/>
<Unknown/>
<EnvironmentVariables>
<EnvironmentVariable name="A" value="${B}"/>
<EnvironmentVariable name="B" value="${A}"/>
<EnvironmentVariable name="C" value="${NOWHERE}"/>
<EnvironmentVariable name="D" value="1"/>
<EnvironmentVariable name="D" value="2"/><EnvironmentVariable name="VelaGatewayPort" value="70000"/>
<EnvironmentVariable name="R" value="2" redefine="true"/>
<EnvironmentVariable name="O" value="2" redefine="true" override="true"/>
</EnvironmentVariables>
<RscSettings path="rsc.settings"/><SecuritySettings path="gone.security"/>
<NmSettings path="nm.settings"/>)");
        system.environment["VELA_PATH_SYSTEM_DIR"] = system.directory / "system";
        system.directory.Write("system/System/Scm/Scm.settings",
                               "<ScmSettingsDocument><Features>\n<Feature/></Features></ScmSettingsDocument>");
        system.directory.Write("nm.settings", "<NmSettingsDocument>\n<Queue maxBytes=\"0\"/></NmSettingsDocument>");
        system.directory.Write("more.settings", "<KiroSettingsDocument>text<LogSettings configFile=\"gone.log\"/>\n");
        system.directory.Write("other.settings", "<Other/>");
        system.directory.Write("rsc.settings", "<RscSettingsDocument>\n<Limits maxConnections=\"0\"/>\n"
                                               "<Timeouts call=\"never\"/></RscSettingsDocument>");
    }

    void WriteConfigurationDefects() const
    {
        system.WriteConfig(R"(<Processes><Process name="MainProcess" args="x"/>
<Process name="Idle"/>
<Process name="P" settingsPath="gone.settings" workingDirectory="gone" localTcpPort="65536"/>
<Process name="P"/>
<Process name="X" binaryPath="gone" args="'x"/>
<Process name="E" external="true"/></Processes>
<Libraries>)" + Library("Recording", TestSystem::GetBuiltFile("lib/libRecording.so")) +
                           R"(<Library name="Unused" binaryPath="gone.so"/></Libraries>
<Components><Component name="main" type="RecordingController" library="Recording" process="MainProcess"/>
<Component name="c" type="RecordingController" library="Recording" process="P"><Settings path="gone.xml"/></Component>
<Component name="c" type="RecordingController" library="Recording"/>
<Component name="negative" type="NoSuchType" library="Recording" process="P" startOrder="-4"/>
<Component name="lost" type="T" library="Recording" process="Nowhere"/>
<Component name="unlibraried" type="T" library="Nowhere" process="P"/>
<Component name="external" type="Recorder" library="Recording" process="E"/>
<Component name="generic" type="RecordingController" library="Recording" process="*" isRequired="true"/>
<Component library="Recording"/></Components>)");
    }

    /// A library of the build tree, some bytes of which are replaced.
    [[nodiscard]] std::string WritePatchedLibrary(const std::string& name, const std::string& text,
                                                  const std::string& replacement) const
    {
        std::ifstream stream(TestSystem::GetBuiltFile("lib/libRecording.so"), std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        for (auto at = bytes.find(text); at != std::string::npos; at = bytes.find(text, at + 1))
        {
            bytes.replace(at, replacement.size(), replacement);
        }
        return system.directory.Write(name, bytes);
    }

    void WriteLibraryDefects() const
    {
        std::ifstream stream(TestSystem::GetBuiltFile("lib/libRecording.so"), std::ios::binary);
        std::string foreign{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        foreign.at(offsetof(Elf32_Ehdr, e_machine)) = static_cast<char>(EM_RISCV);
        const std::vector<std::pair<std::string, std::string>> libraries{
            {"Gone", "gone.so"},
            {"Foreign", system.directory.Write("libForeign.so", foreign)},
            {"Needy", WritePatchedLibrary("libNeedy.so", "libVela.System.Kiro.so", "libVela.System.None.so")},
            {"Text", system.directory.Write("libText.so", "a text")},
            {"OtherVersion", TestSystem::GetBuiltFile("lib/libOtherVersion.so")},
            {"OtherLayout", TestSystem::GetBuiltFile("lib/libOtherLayout.so")},
            {"NoEntry", TestSystem::GetBuiltFile("lib/libNoEntry.so")},
            {"FirstGeneration", TestSystem::GetBuiltFile("lib/libFirstGeneration.so")},
            {"Crashing", TestSystem::GetBuiltFile("lib/libCrashingInitialiser.so")},
        };
        std::string declarations;
        std::string components;
        for (const auto& [name, path] : libraries)
        {
            declarations += Library(name, path);
            components.append("<Component name=\"c").append(name).append("\" type=\"T\" library=\"");
            components.append(name).append("\"/>\n");
        }
        system.WriteConfig("<Libraries>\n" + declarations + "</Libraries>\n<Components>" + components +
                           "</Components>");
    }

    const std::string trustEverybody = R"(<FileTrust libraries="Ignore"/>)";
    Json answer;
    std::set<std::string> produced;
};

} // namespace

TEST_F(CheckTest, FindsNothingWrongInASoundSystem)
{
    system.WriteSettings(trustEverybody + R"(<EnvironmentVariables><EnvironmentVariable name="LIBRARIES" value=")" +
                         TestSystem::GetBuiltFile("lib") + R"("/></EnvironmentVariables>)");
    system.WriteConfig(R"(<Processes><Process name="P"/></Processes><Libraries>)" +
                       Library("Recording", "${LIBRARIES}/libRecording.so") +
                       R"(</Libraries><Components>
<Component name="a" type="RecordingController" library="Recording" process="P"/>
<Component name="g" type="Recorder" library="Recording" process="*"/></Components>)");
    EXPECT_EQ(Find({"--strict"}), "");
    EXPECT_EQ(answer["ok"], true);
    const Result text = Run({"check"});
    EXPECT_EQ(text.output, "Nothing is wrong.\n");
    EXPECT_EQ(text.exitCode, 0);
}

TEST_F(CheckTest, FindsAllDefectsOfTheSettingsAtOnce)
{
    WriteSettingsDefects();
    EXPECT_EQ(Find(), R"(K1005 Default.kiro.settings:4
K1008 Default.kiro.settings:4
K1004 Default.kiro.settings:5
K1005 Default.kiro.settings:5
K1007 Default.kiro.settings:6
K1103 Default.kiro.settings:12
K1105 Default.kiro.settings:14
K1009 more.settings:1
K1002 more.settings:2
K1001 Default.kiro.settings:2
K1006 Default.kiro.settings:3
K1003 other.settings:1
K1104 Default.kiro.settings:13
K1102 Default.kiro.settings:9
K1101 Default.kiro.settings:10
K1503 more.settings:1
K1203 rsc.settings:2
K1005 rsc.settings:3
K1504 nm.settings:2
K1501 Default.kiro.settings:16
K1004 Scm.settings:2
K1106 Default.kiro.settings:8
K1106 Default.kiro.settings:10
K1106 Default.kiro.settings:11
K1106 Default.kiro.settings:14
K1505 Default.kiro.settings:12
)");
    const Json& included = answer["findings"][7];
    EXPECT_EQ(included["includedFrom"].dump(),
              Json::array({{{"file", system.directory / "Default.kiro.settings"}, {"line", 2}}}).dump());
    EXPECT_EQ(answer["findings"][5]["related"]["line"], 11);
}

TEST_F(CheckTest, FindsAllDefectsOfTheConfigurationAtOnce)
{
    WriteConfigurationDefects();
    EXPECT_EQ(Find(), R"(K1201 Default.kiro.config:5
K1202 Default.kiro.config:12
K1203 Default.kiro.config:13
K1004 Default.kiro.config:18
K1004 Default.kiro.config:18
K1208 Default.kiro.config:3
K1204 Default.kiro.config:10
K1204 Default.kiro.config:11
K1205 Default.kiro.config:17
K1210 Default.kiro.config:2
K1206 Default.kiro.config:14
K1207 Default.kiro.config:15
K1213 Default.kiro.config:4
K1203 Default.kiro.config:4
K1001 Default.kiro.config:4
K1212 Default.kiro.config:6
K1203 Default.kiro.config:6
K1211 Default.kiro.config:16
K1214 Default.kiro.config:11
K1306 Default.kiro.config:13
K1209 Default.kiro.config:9
)");
}

TEST_F(CheckTest, LooksIntoLibrariesAndSurvivesThem)
{
    WriteLibraryDefects();
    EXPECT_EQ(Find(), R"(K1305 Default.kiro.config:11
K1305 Default.kiro.config:10
K1302 Default.kiro.config:4
K1301 Default.kiro.config:3
K1304 Default.kiro.config:5
K1307 Default.kiro.config:9
K1303 Default.kiro.config:8
K1303 Default.kiro.config:7
K1305 Default.kiro.config:6
)");
    EXPECT_NE(answer["findings"][0]["text"].get<std::string>().find("crashed"), std::string::npos);
    EXPECT_NE(answer["findings"][4]["text"].get<std::string>().find("libVela.System.None.so"), std::string::npos);
    // What only loading shows stays unknown without it.
    EXPECT_EQ(Find({"--no-load"}).find("K1304"), std::string::npos);
}

TEST_F(CheckTest, SaysWhatStandsWhereAFileShould)
{
    system.WriteConfig(R"(<Processes>
<Process name="P" settingsPath="Default.kiro.settings" workingDirectory="Default.kiro.config"/></Processes>
<Libraries><Library name="D" binaryPath="/"/><Library name="N" binaryPath="/dev/null"/></Libraries>
<Components><Component name="d" type="T" library="D" process="P"><Settings path="/dev"/></Component>
<Component name="n" type="T" library="N" process="P"/></Components>)");
    const Result result = Run({"check"});
    for (const char* said : {"Default.kiro.config' is a file.", "Library '/' is a directory.",
                             "Library '/dev/null' is a device.", "settings file '/dev' is a directory."})
    {
        EXPECT_NE(result.output.find(said), std::string::npos) << said << "\n" << result.output;
    }
}

TEST_F(CheckTest, TellsWhatOthersCanChange)
{
    system.WriteSettings("<SecuritySettings path=\"security.xml\"/>");
    chmod(system.directory.Write("security.xml", "<SecuritySettingsDocument/>").c_str(), 0666);
    chmod((system.directory / "Default.kiro.config").c_str(), 0666);
    EXPECT_EQ(Find(), "K1401 security.xml:0\nK1402 Default.kiro.config:0\n");
    EXPECT_EQ(answer["errors"], 1);
    EXPECT_EQ(answer["warnings"], 1);
    // A warning is an error to whoever asks for it.
    Find({"--strict"});
    EXPECT_EQ(answer["errors"], 2);
}

TEST_F(CheckTest, ProducesEveryCodeThatItDocuments)
{
    WriteSettingsDefects();
    WriteConfigurationDefects();
    Find();
    WriteLibraryDefects();
    system.WriteSettings("<RscSettings path=\"gone.rsc\"/><SecuritySettings path=\"security.xml\"/>"
                         "<NmSettings path=\"gone.nm\"/>");
    chmod(system.directory.Write("security.xml", "<SecuritySettingsDocument/>").c_str(), 0666);
    chmod((system.directory / "Default.kiro.config").c_str(), 0666);
    Find();

    std::set<std::string> documented;
    std::string rows;
    for (const Json& code : Ask({"check", "--codes"}))
    {
        documented.insert(code["code"].get<std::string>());
        rows += "| " + code["code"].get<std::string>() + " | " + code["severity"].get<std::string>() + " | " +
                code["meaning"].get<std::string>() + " |\n";
    }
    EXPECT_EQ(produced, documented);
    std::ifstream stream(KIROCTL_DOCUMENT);
    const std::string document{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    EXPECT_NE(document.find(rows), std::string::npos) << "The table of codes in docs/kiroctl.md should be:\n" << rows;
}

TEST_F(CheckTest, AgreesWithTheRuntimeAboutWhatIsRefused)
{
    WriteConfigurationDefects();
    Find();
    const std::string first = answer["findings"][0]["text"];
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1);
    EXPECT_TRUE(main.HasOutput(first)) << main.GetOutput();
}

TEST_F(CheckTest, NamesADocumentThatIsMissing)
{
    EXPECT_EQ(Find({"gone.settings", "gone.config"}), "K1001 gone.settings:0\nK1001 gone.config:0\n");
    const Result result = Run({"check", "gone.settings", "Default.kiro.config"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, (system.directory / "gone.settings") + ": error: Cannot read file '" +
                                 (system.directory / "gone.settings") +
                                 "': No such file or directory [K1001]\n1 error, 0 warnings, 0 notes.\n");
}

} // namespace Vela::Testing
