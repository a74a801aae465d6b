#include "DrawnPage.hpp"
#include "KiroctlFixture.hpp"

#include <RecordedTrace.hpp>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace Vela::Testing
{

namespace
{

class PlanTest : public KiroctlTest
{
protected:
    PlanTest()
    {
        system.environment["RECORDING_TRACE"] = system.directory / "trace";
        system.WriteSettings(R"(<Includes><Include path="device.settings"/></Includes>
<LogSettings logLevel="Info"/>
<EnvironmentVariables><EnvironmentVariable name="LIBRARIES" value="/nowhere"/>
<EnvironmentVariable name="RECORDING" value="${LIBRARIES}/libRecording.so"/></EnvironmentVariables>)");
        system.directory.Write("device.settings",
                               "<KiroSettingsDocument>\n<LogSettings logLevel=\"Debug\"/><EnvironmentVariables>\n"
                               "<EnvironmentVariable name=\"LIBRARIES\" value=\"" +
                                   TestSystem::GetBuiltFile("lib") +
                                   "\" redefine=\"true\"/></EnvironmentVariables></KiroSettingsDocument>");
        system.directory.Write("device.config", R"(<KiroConfigurationDocument>
<Components><Component name="Late" type="RecordingController" library="Recording" process="B" startOrder="30"/>
</Components></KiroConfigurationDocument>)");
        WriteConfig("");
    }

    void WriteConfig(const std::string& moreComponents) const
    {
        system.WriteConfig(R"(<Includes><Include path="device.config"/></Includes>
<Processes><Process name="MainProcess"/><Process name="A" settingsPath="Default.kiro.settings" core="0"/>
<Process name="B" settingsPath="Default.kiro.settings" args="--loglevel=Debug"/><Process name="Idle"/></Processes>
<Libraries><Library name="Recording" binaryPath="${RECORDING}"/></Libraries>
<Components><Component name="Middle" type="RecordingController" library="Recording" process="A" startOrder="20"/>
<Component name="Own" type="Recorder:controller:order=10" library="Recording" process="B"/>
<Component name="Off" type="RecordingController" library="Recording" isEnabled="false" startOrder="25"/>
<Component name="Everywhere" type="Recorder:controller:order=5" library="Recording" process="*"/>
)" + moreComponents + "</Components>");
    }

    /// The names of the plan's components, in its order.
    static std::string GetNames(const Json& plan)
    {
        std::string names;
        for (const Json& component : plan["components"])
        {
            names += (names.empty() ? "" : " ") + component["name"].get<std::string>();
        }
        return names;
    }

    /// An item of a list by its name.
    static Json Find(const Json& list, const std::string& name)
    {
        for (const Json& item : list)
        {
            if (item["name"] == name)
            {
                return item;
            }
        }
        ADD_FAILURE() << name << " is not in " << list.dump();
        return Json::object();
    }
};

} // namespace

TEST_F(PlanTest, TheOrderIsTheOneInWhichTheRuntimeStarts)
{
    const Json plan = Ask({"plan"});
    EXPECT_EQ(GetNames(plan), "Everywhere@A Everywhere@B Own Middle Off Late");
    EXPECT_EQ(GetNames(Ask({"plan", "--order", "stop"})), "Late Off Middle Own Everywhere@B Everywhere@A");

    StartedProcess main = system.Start();
    main.AwaitLine("was setup successfully");
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(GetRecordedOrder(system.directory.Read("trace"), "Start"), "Everywhere@A Everywhere@B Own Middle Late");
    EXPECT_EQ(GetRecordedOrder(system.directory.Read("trace"), "Stop"), "Late Middle Own Everywhere@B Everywhere@A");
}

TEST_F(PlanTest, EveryValueSaysWhereItCameFrom)
{
    const Json plan = Ask({"plan"});
    const std::string directory = system.directory / "";
    const std::string library = TestSystem::GetBuiltFile("lib/libRecording.so");

    const Json a = Find(plan["processes"], "A");
    EXPECT_EQ(a["kind"], "child");
    EXPECT_EQ(a["command"], TestSystem::GetBuiltFile("bin/Vela.System.Application") +
                                " --child=true --name=A --settings=" + directory + "Default.kiro.settings");
    EXPECT_EQ(a["libraries"].dump(),
              Json::array({{{"name", "Recording"}, {"path", library}, {"origin", directory + "Default.kiro.config:5"}}})
                  .dump());
    EXPECT_EQ(a["origin"], directory + "Default.kiro.config:3");
    EXPECT_NE(Find(plan["processes"], "B")["command"].get<std::string>().find(" --loglevel=Debug"), std::string::npos);
    EXPECT_EQ(plan["processes"].size(), 3U);

    const Json late = Find(plan["components"], "Late");
    EXPECT_EQ(late["origin"], directory + "device.config:2");
    EXPECT_EQ(late["orderFrom"], "configuration");
    EXPECT_EQ(late["controller"], true);
    const Json own = Find(plan["components"], "Own");
    EXPECT_EQ(own["startOrder"], 10);
    EXPECT_EQ(own["orderFrom"], "component");
    EXPECT_EQ(Find(plan["components"], "Everywhere@A")["copyOf"], "Everywhere");
    EXPECT_EQ(Find(plan["components"], "Off")["enabled"], false);
    // Without loading anything only what is configured is known.
    EXPECT_EQ(Find(Ask({"plan", "--no-load"})["components"], "Own")["startOrder"], nullptr);

    const Json recording = Find(plan["variables"], "RECORDING");
    EXPECT_EQ(recording["raw"], "${LIBRARIES}/libRecording.so");
    EXPECT_EQ(recording["value"], library);
    const Json libraries = Find(plan["variables"], "LIBRARIES");
    EXPECT_EQ(libraries["kind"], "redefinition");
    EXPECT_EQ(libraries["origin"], directory + "device.settings:3");
    EXPECT_EQ(libraries["overrode"].dump(),
              Json::array({{{"value", "/nowhere"}, {"origin", directory + "Default.kiro.settings:4"}}}).dump());
    const Json level = Find(plan["values"], "LogSettings/logLevel");
    EXPECT_EQ(level["value"], "Debug");
    EXPECT_EQ(level["overrode"][0]["value"], "Info");
}

TEST_F(PlanTest, TellsTheDifferencesOfTwoPlans)
{
    const std::string before = system.directory.Read("Default.kiro.config");
    system.directory.Write("before.config", before);
    EXPECT_EQ(Ask({"plan", "--diff", "before.config"}), Json::array());
    WriteConfig("<Component name=\"New\" type=\"Recorder\" library=\"Recording\"/>");
    std::string changed = system.directory.Read("Default.kiro.config");
    changed.replace(changed.find("startOrder=\"20\""), 15, "startOrder=\"40\"");
    changed.replace(changed.find("name=\"Off\""), 10, "name=\"Out\"");
    system.directory.Write("after.config", changed);

    system.directory.Write("Default.kiro.config", before);
    std::string changes;
    for (const Json& difference : Ask({"plan", "--diff", "after.config"}, 1))
    {
        changes += difference["what"].get<std::string>() + " " + difference["name"].get<std::string>() + " " +
                   difference["change"].get<std::string>() + " " + difference.value("field", "") + "\n";
    }
    EXPECT_EQ(changes, "component Middle changed startOrder\n"
                       "component Off removed \n"
                       "component New added \n"
                       "component Out added \n"
                       "order components moved order\n");
    EXPECT_EQ(Run({"plan", "--diff", "before.config"}).output, "The plans are the same.\n");
    EXPECT_EQ(Run({"plan", "--diff", "before.config", "--order", "stop"}).exitCode, 2);

    // What is broken differs from everything, which says nothing.
    system.directory.Write("broken.config", "<KiroConfigurationDocument>");
    for (const std::string file : {"gone.config", "broken.config"})
    {
        const Result result = Run({"plan", "--diff", file});
        EXPECT_EQ(result.exitCode, 6);
        EXPECT_EQ(result.output, "kiroctl: The plans cannot be compared, there are errors in '" +
                                     (system.directory / file) + "' ('kiroctl check' tells them).\n");
    }
    EXPECT_EQ(Run({"plan", "gone.settings", "--diff", "before.config", "--json"}).exitCode, 6);
}

TEST_F(PlanTest, TheExampleIsSoundAndStartsInItsOrder)
{
    const std::filesystem::path plant = system.directory.GetPath() / "plant";
    const auto copy = [this](const std::filesystem::path& file, const std::string& name)
    {
        std::ifstream stream(file, std::ios::binary);
        system.directory.Write(name, {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()});
    };
    for (const auto& document : std::filesystem::directory_iterator(EXAMPLE_DOCUMENTS))
    {
        copy(document.path(), "plant/system/" + document.path().filename().string());
    }
    // The example is a project of its own; libraries that are not loaded need no more than to be libraries.
    for (const std::string name : {"TankSimulator", "LevelController", "PlantServices"})
    {
        copy(TestSystem::GetBuiltFile("lib/libRecording.so"), "plant/lib/lib" + name + ".so");
    }
    const std::string settings = plant / "system/Default.kiro.settings";
    const std::string configuration = plant / "system/Default.kiro.config";
    const Result check = Run({"check", "--strict", "--no-load", settings, configuration});
    EXPECT_EQ(check.exitCode, 0);
    EXPECT_EQ(check.output, "Nothing is wrong.\n");
    EXPECT_EQ(GetNames(Ask({"plan", "--no-load", settings, configuration})),
              "Alarms Simulator LevelController Resources@Control Resources Resources@Plant");
}

TEST_F(PlanTest, ShowsWhatItKnowsOfAPlanThatWouldFail)
{
    WriteConfig("<Component name=\"Lost\" type=\"NoSuchType\" library=\"Recording\"/>"
                "<Component name=\"Broken\" type=\"T\" library=\"Nowhere\"/>");
    const Result result = Run({"plan"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.output.find("its type is unknown"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("kiroctl: The documents have errors"), std::string::npos) << result.output;
}

TEST_F(PlanTest, TablesKeepToTheWidthThatIsWanted)
{
    system.environment["COLUMNS"] = "80";
    std::istringstream lines(Run({"plan"}).output);
    for (std::string line; std::getline(lines, line);)
    {
        EXPECT_TRUE(line.size() <= 80 || line.starts_with("settings:") || line.starts_with("configuration:")) << line;
        EXPECT_FALSE(line.ends_with(' ')) << line;
    }
}

TEST_F(PlanTest, DrawsThePlan)
{
    const std::string svg = Run({"graph"}).output;
    EXPECT_EQ(CheckDrawnPage(system.directory, svg), 3U + 6U + 2U + 1U);
    for (const char* name : {">Everywhere@A<", ">Own<", ">Late<", ">MainProcess<", ">Recording<"})
    {
        EXPECT_NE(svg.find(name), std::string::npos) << name;
    }

    const std::string dot = Run({"graph", "--format", "dot"}).output;
    EXPECT_NE(dot.find("\"component Late\" -> \"library Recording\";"), std::string::npos) << dot;
    EXPECT_NE(dot.find("label=\"3. Own\""), std::string::npos) << dot;
    const Json graph = Ask({"graph"});
    EXPECT_EQ(graph["nodes"].size(), 3U + 6U + 1U);
    EXPECT_EQ(graph["edges"][0].dump(), Json({{"kind", "starts"}, {"from", "MainProcess"}, {"to", "A"}}).dump());
}

} // namespace Vela::Testing
