// The commands that ask and command a running system, tried with the built tool on built systems.

#include "DrawnPage.hpp"
#include "SystemFixture.hpp"
#include "ThreadRest.hpp"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <regex>

using nlohmann::json;
using namespace Vela::Testing;

namespace
{

struct Answer
{
    int code;
    std::string text;

    [[nodiscard]] json GetJson() const
    {
        return json::parse(text);
    }
};

/// The names of a list's entries, blank-separated.
std::string GetNames(const json& list)
{
    std::string names;
    for (const json& entry : list)
    {
        names += entry.at("name").get<std::string>() + " ";
    }
    return names;
}

json FindNamed(const json& list, const std::string& name)
{
    for (const json& entry : list)
    {
        if (entry.at("name") == name)
        {
            return entry;
        }
    }
    return nullptr;
}

class RunningSystemTest : public SystemTest
{
protected:
    [[nodiscard]] Answer Ask(const std::vector<std::string>& arguments) const
    {
        StartedProcess tool(TestSystem::GetBuiltFile("bin/kiroctl"), arguments, system.environment,
                            system.directory.GetPath().string());
        const int code = tool.AwaitEnd();
        return {code, tool.GetOutput()};
    }

    [[nodiscard]] json AskJson(std::vector<std::string> arguments, int code = 0) const
    {
        arguments.insert(arguments.begin(), "--json");
        const Answer answer = Ask(arguments);
        EXPECT_EQ(answer.code, code) << answer.text;
        return answer.GetJson();
    }

    /// A FIFO at which a component waits until its writer closes it again.
    [[nodiscard]] std::string MakeGate() const
    {
        std::string gate = system.directory / "gate";
        mkfifo(gate.c_str(), S_IRUSR | S_IWUSR);
        return gate;
    }

    void ConfigurePlant() const
    {
        Configure({"MainProcess", "Left", "Right"}, {{"Tank1", "Left", "Recorder:controller:order=1"},
                                                     {"Tank2", "Right", "Recorder:controller:order=2"},
                                                     {"Panel", "MainProcess", "Recorder:order=3"}});
    }

    static std::string Contents(const std::string& path)
    {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

} // namespace

TEST_F(RunningSystemTest, AHealthySystemAnswersAllCommands)
{
    ConfigurePlant();
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);

    const json status = AskJson({"status"});
    EXPECT_EQ(status["state"], "running");
    EXPECT_EQ(status["hasError"], false);
    EXPECT_EQ(status["phase"], "");
    EXPECT_EQ(GetNames(status["processes"]), "Left MainProcess Right ");
    EXPECT_EQ(FindNamed(status["processes"], "MainProcess")["pid"], main.GetId());
    EXPECT_GT(FindNamed(status["processes"], "Left")["residentBytes"], 500'000);
    EXPECT_EQ(status["components"], (json{{"configured-up", 1}, {"running", 2}}));
    EXPECT_NE(Ask({"status"}).text.find("is running for"), std::string::npos);
    EXPECT_EQ(GetNames(AskJson({"processes"})), "Left MainProcess Right ");

    EXPECT_EQ(GetNames(AskJson({"components"})), "Tank1 Tank2 Panel ");
    EXPECT_EQ(GetNames(AskJson({"components", "--process", "Right"})), "Tank2 ");
    EXPECT_EQ(GetNames(AskJson({"components", "--state", "configured-up"})), "Panel ");
    EXPECT_EQ(GetNames(AskJson({"components", "--state", "failed"})), "");
    EXPECT_EQ(Ask({"components", "--process", "Rigth", "--json"}).text,
              "kiroctl: There is no process 'Rigth'. Did you mean 'Right'?\n");
    for (const char* filter : {"--process", "--type", "--state"})
    {
        EXPECT_EQ(Ask({"components", filter, "Nobody"}).code, 4) << filter;
    }

    const json explained = AskJson({"explain", "Tank1"});
    EXPECT_EQ(explained["state"], "running");
    EXPECT_EQ(explained["step"], "StartComponent");
    EXPECT_EQ(explained["process"], "Left");
    EXPECT_TRUE(std::regex_search(explained["position"].get<std::string>(), std::regex("Default.kiro.config:[0-9]+")))
        << explained["position"];
    EXPECT_EQ(explained["waitsFor"], json::array());
    const Answer unknown = Ask({"explain", "Tnk1"});
    EXPECT_EQ(unknown.code, 4);
    EXPECT_EQ(unknown.text, "kiroctl: There is no component 'Tnk1'. Did you mean 'Tank1' or 'Tank2'?\n");

    EXPECT_EQ(Ask({"env", "set", "PLANT_MODE", "slow"}).code, 0);
    for (const char* process : {"MainProcess", "Left", "Right"})
    {
        EXPECT_EQ(Ask({"env", "get", "PLANT_MODE", "--process", process}).text, "slow\n");
    }
    EXPECT_EQ(FindNamed(AskJson({"env", "list"}), "PLANT_MODE")["value"], "slow");
    EXPECT_EQ(Ask({"env", "set", std::string(127, 'N'), std::string(512, 'v')}).code, 0);
    EXPECT_EQ(Ask({"env", "get", std::string(127, 'N'), "--process", "Left"}).text, std::string(512, 'v') + "\n");
    for (const std::string& name : {std::string(), std::string("A=B"), std::string(128, 'N')})
    {
        EXPECT_EQ(Ask({"env", "set", name, "x"}).code, 2) << name;
    }
    EXPECT_EQ(Ask({"env", "set", "N", std::string(513, 'v')}).code, 2);
    EXPECT_EQ(Ask({"env", "get", "PLANT_MOOD"}).text,
              "kiroctl: The system has not defined 'PLANT_MOOD'. Did you mean 'PLANT_MODE'?\n");
    EXPECT_EQ(Ask({"env", "list", "--process", "Lft"}).code, 4);
    EXPECT_EQ(Ask({"resolve", "PLANT_MODE"}).code, 4);

    EXPECT_EQ(Ask({"loglevel", "Vela", "loud"}).code, 2);
    const std::string category = "Vela.System.Kiro.Internal.Pm";
    EXPECT_EQ(AskJson({"loglevel", category, "trace", "--process", "Left"}).size(), 1U);
    EXPECT_EQ(AskJson({"loglevel"}).size(), 4U) << "one of each process, and the one of Left";
    EXPECT_EQ(Ask({"power-down"}).code, 0);
    EXPECT_EQ(GetOrder("PowerDown"), "Panel Tank2 Tank1");
    const json traced = AskJson({"log", "--category", category, "--level", "trace"});
    ASSERT_FALSE(traced.empty());
    for (const json& line : traced)
    {
        EXPECT_EQ(line["level"] == "Trace", line["process"] == "Left" && line["level"] == "Trace") << line;
    }
    EXPECT_EQ(traced.back()["process"], "Left");
    EXPECT_EQ(AskJson({"log", "-n", "2"}).size(), 2U);

    EXPECT_EQ(Ask({"shutdown", "--wait", "60"}).code, 0);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(system.FindLeftovers(), "");
    EXPECT_EQ(Ask({"status"}).code, 3);
}

TEST_F(RunningSystemTest, ServicesAndTheirUsersAreListedAndDrawn)
{
    ConfigurePlant();
    // Names of services are free.
    WriteScript("Tank1 PublishServices publish\nTank2 PublishServices publish Fan \x1B.1 \xFC\n"
                "Tank2 Start call Tank1 sleep 0\nPanel LoadConfig call Tank1 sleep 0\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);

    const std::string name = "Vela.Testing.IRecordingService";
    const json expected{
        {"name", name},
        {"interface", name},
        {"process", "Left"},
        {"provider", "Tank1"},
        {"component", "Tank1"},
        {"isPublished", true},
        {"users",
         {{{"process", "MainProcess"}, {"component", "Panel"}}, {{"process", "Right"}, {"component", "Tank2"}}}}};
    EXPECT_EQ(AskJson({"services", "--component", "Panel"}), json::array({expected}));
    EXPECT_EQ(Ask({"services", "--component", "Pannel"}).text,
              "kiroctl: There is no component 'Pannel'. Did you mean 'Panel'?\n");
    const json all = AskJson({"services"});
    EXPECT_EQ(std::count(all.begin(), all.end(), expected), 1);
    const auto diagnostics = std::count_if(
        all.begin(), all.end(),
        [](const json& service) { return service["name"].get<std::string>().ends_with(".IDiagnosticsService"); });
    EXPECT_EQ(diagnostics, 3) << "each process has its own";
    EXPECT_TRUE(std::regex_search(Ask({"services"}).text, std::regex(name + " +Left +Tank1 +Panel Tank2")));

    const json graph = AskJson({"graph", "--running"});
    const std::string node = "service " + name + " of component Tank1";
    EXPECT_EQ(FindNamed(graph["nodes"], node)["kind"], "service");
    for (const auto& [kind, from] : {std::pair("publishes", "Tank1"), {"uses", "Tank2"}, {"uses", "Panel"}})
    {
        const json edge{{"kind", kind}, {"from", from}, {"to", node}};
        EXPECT_EQ(std::count(graph["edges"].begin(), graph["edges"].end(), edge), 1) << edge;
    }
    const std::string dot = Ask({"graph", "--running", "--format", "dot"}).text;
    EXPECT_NE(dot.find("\"component Panel\" -> \"" + node + "\" [style=dashed];"), std::string::npos) << dot;
    const std::string svg = Ask({"graph", "--running"}).text;
    EXPECT_EQ(CheckDrawnPage(system.directory, svg), 3U + 3U + 2U + 2U + 1U);
    for (const std::string& drawn : {std::string(">IRecordingService<"), std::string(">Fan \\x1B.1 \xEF\xBF\xBD<"),
                                     "Tank2 uses " + name, "Panel uses " + name})
    {
        EXPECT_NE(svg.find(drawn), std::string::npos) << drawn;
    }
    EXPECT_EQ(Ask({"graph", "--running", "other.settings"}).code, 2);

    // A process that does not answer hides the others' services from nobody.
    const auto right = static_cast<pid_t>(FindNamed(AskJson({"processes"}), "Right")["pid"]);
    StopAllThreads(right);
    const Answer partial = Ask({"services"});
    const Answer log = Ask({"log"});
    const Answer levels = Ask({"loglevel", "Plant", "debug"});
    ASSERT_EQ(kill(right, SIGCONT), 0);
    EXPECT_EQ(log.code, 3);
    EXPECT_NE(log.text.find("Tank1 takes step Start"), std::string::npos) << log.text;
    EXPECT_NE(log.text.find("The messages of process 'Right' are missing: it does not answer."), std::string::npos);
    EXPECT_EQ(partial.code, 3);
    EXPECT_TRUE(std::regex_search(partial.text, std::regex(name + " +Left +Tank1 +Panel"))) << partial.text;
    EXPECT_NE(partial.text.find("The services of process 'Right' are missing: it does not answer."), std::string::npos);
    EXPECT_EQ(levels.code, 3);
    EXPECT_TRUE(std::regex_search(levels.text, std::regex("Left +Plant +Debug *\nMainProcess +Plant +Debug")))
        << levels.text;
    EXPECT_NE(levels.text.find("The levels of process 'Right' are missing: it does not answer."), std::string::npos);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0);
}

TEST_F(RunningSystemTest, WaitsForTheEndOfTheMainProcessAndNotForItsSilence)
{
    // The last of all: no service is left by then.
    Configure({"MainProcess"}, {{"Last", "MainProcess", "RecordingNone"}});
    const std::string gate = MakeGate();
    WriteScript("Last Destroy await " + gate + "\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    const Answer early = Ask({"shutdown", "--wait", "1"});
    EXPECT_EQ(early.code, 1);
    EXPECT_EQ(early.text, "kiroctl: System 'MainProcess' has not ended within 1 s.\n");
    main.AwaitLine("Last takes step Destroy");
    EXPECT_EQ(Ask({"status"}).code, 3);
    ::close(open(gate.c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(RunningSystemTest, TheTimesOfAStartAreDrawnRankedAndHeldToABudget)
{
    ConfigurePlant();
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);

    const json document = AskJson({"timeline"});
    system.directory.Write("timeline.json", document.dump());
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0);

    // Two controllers and one other component: creation, five steps of settings, two of configuration, and the start.
    std::size_t bars = 0;
    std::int64_t last = 0;
    for (const json& step : document["steps"])
    {
        EXPECT_LE(step["begin"], step["end"]) << step;
        EXPECT_EQ(step["outcome"], "done") << step;
        EXPECT_GE(step["begin"], last) << "in the order of their begin";
        last = step["begin"].get<std::int64_t>();
        bars += step["subject"] == "phase" ? 0U : 1U;
    }
    EXPECT_EQ(std::count_if(document["steps"].begin(), document["steps"].end(),
                            [](const json& step) { return step["subject"] == "component"; }),
              3 * 8 + 2);
    EXPECT_EQ(std::count_if(document["steps"].begin(), document["steps"].end(),
                            [](const json& step) { return step["subject"] == "process"; }),
              2);

    // From here on the file stands for the system, which is gone.
    const auto timeline = [&](std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"timeline", "--input", "timeline.json"});
        return arguments;
    };
    EXPECT_EQ(AskJson(timeline({})), document);
    const json blamed = AskJson(timeline({"blame", "-n", "5"}));
    EXPECT_EQ(blamed.size(), 5U);
    EXPECT_TRUE(std::is_sorted(blamed.begin(), blamed.end(),
                               [](const json& left, const json& right)
                               {
                                   return left["end"].get<std::int64_t>() - left["begin"].get<std::int64_t>() >
                                          right["end"].get<std::int64_t>() - right["begin"].get<std::int64_t>();
                               }));
    std::string phases;
    for (const json& link : AskJson(timeline({"critical-chain"})))
    {
        phases += link["subject"] == "phase" ? link["step"].get<std::string>() + " " : "";
    }
    EXPECT_EQ(phases, "load-config start-processes load-libraries create settings config start ");

    ASSERT_EQ(Ask(timeline({"export", "-o", "trace.json"})).code, 0);
    const json trace = json::parse(Contents(system.directory / "trace.json"));
    EXPECT_EQ(trace["traceEvents"].size(), document["steps"].size() + 3) << "and the names of three processes";

    ASSERT_EQ(Ask(timeline({"plot", "-o", "plot.svg"})).code, 0);
    const std::string svg = Contents(system.directory / "plot.svg");
    CheckDrawnPage(system.directory, svg);
    const std::regex bar("class=\"bar\" x=\"[0-9.]+\"");
    const auto drawn = static_cast<std::size_t>(
        std::distance(std::sregex_iterator(svg.begin(), svg.end(), bar), std::sregex_iterator()));
    EXPECT_EQ(drawn, bars);

    const auto judge = [&](const std::string& budget)
    {
        system.directory.Write("budget.json", budget);
        return Ask(timeline({"--budget", "budget.json"})).code;
    };
    EXPECT_EQ(judge(R"({"total": 3600000, "phases": {"start": 3600000}, "components": {"*": {"total": 3600000}}})"), 0);
    EXPECT_EQ(judge(R"({"total": 0})"), 1);
    EXPECT_EQ(judge(R"({"components": {"*": {"total": 0}, "Tank1": {"total": 3600000}}})"), 7);
    EXPECT_EQ(judge(R"({"phases": {"settings": 0}, "components": {"Tank2": {"config": 0}}})"), 8);
    EXPECT_EQ(judge(R"({"components": {"Tank3": {"config": 1}}})"), 4);
    EXPECT_EQ(judge(R"({"phases": {"setings": 1}})"), 4);
    EXPECT_EQ(judge(R"({"total": "fast"})"), 2);
    EXPECT_EQ(judge("{"), 2);
    EXPECT_EQ(Ask({"timeline", "--input", "budget.json"}).code, 2);
    EXPECT_EQ(Ask({"timeline", "--input", "nowhere.json"}).code, 4);
    EXPECT_EQ(Ask(timeline({"--budget", "nowhere.json"})).code, 4);
    system.directory.Write("budget.json", R"({"total": 3600000})");
    EXPECT_EQ(Ask(timeline({"--stop", "--budget", "budget.json"})).code, 6) << "nothing was stopped";
    EXPECT_EQ(Ask(timeline({"--budget", "budget.json", "plot"})).code, 2);
    EXPECT_EQ(Ask(timeline({"--failed"})).code, 2);
}

TEST_F(RunningSystemTest, AStartingSystemTellsWhatItWaitsForAndNotifies)
{
    ConfigurePlant();
    const std::string gate = MakeGate();
    WriteScript("Tank1 LoadSettings await " + gate + "\n");
    StartedProcess main = system.Start();
    // Opens when the component is there to read.
    const int writer = open(gate.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(writer, 0);

    const json status = AskJson({"status"});
    EXPECT_EQ(status["state"], "starting");
    EXPECT_EQ(status["phase"], "settings");
    ASSERT_EQ(status["running"].size(), 2U) << status["running"];
    EXPECT_EQ(status["running"][1]["step"], "LoadComponentSettings");
    EXPECT_EQ(status["running"][1]["name"], "Tank1");

    EXPECT_EQ(AskJson({"explain", "Tank1"})["state"], "busy");
    EXPECT_EQ(Ask({"power-down"}).code, 5);
    const json waiting = AskJson({"explain", "Tank2"});
    EXPECT_EQ(waiting["state"], "created");
    ASSERT_EQ(waiting["waitsFor"].size(), 1U);
    EXPECT_EQ(waiting["waitsFor"][0]["name"], "Tank1");
    EXPECT_EQ(waiting["next"], "kiroctl explain Tank1");
    EXPECT_EQ(FindNamed(AskJson({"timeline"})["steps"], "Tank2")["step"], "CreateComponent");

    StartedProcess watch(TestSystem::GetBuiltFile("bin/kiroctl"), {"watch", "Vela.System.Kiro.*", "--count", "5"},
                         system.environment);
    watch.AwaitLine("Watching");
    close(writer);
    main.AwaitLine(isUp);
    EXPECT_EQ(watch.AwaitEnd(), 0) << watch.GetOutput();
    EXPECT_TRUE(watch.HasOutput("SystemManager.Startup")) << watch.GetOutput();
    EXPECT_EQ(watch.CountOutput("SystemManager.StateChanged"), 4) << watch.GetOutput();

    StartedProcess follow(TestSystem::GetBuiltFile("bin/kiroctl"), {"log", "--follow", "--process", "MainProcess"},
                          system.environment);
    follow.AwaitLine("was setup successfully");
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0);
    EXPECT_EQ(follow.AwaitEnd(), 0) << follow.GetOutput();
}

TEST_F(RunningSystemTest, WhatFailsIsExplainedInFull)
{
    Configure({"MainProcess", "Left"}, {{"Tank1", "Left", "Recorder:controller:order=1"},
                                        {"Valve", "Left", "Recorder:controller:order=2", "isRequired=\"false\""},
                                        {"Pump", "Left", "Recorder:controller:order=3", "isRequired=\"true\""},
                                        {"Fan", "Left", "Recorder:controller:order=4", "isRequired=\"false\""}});
    WriteScript("Valve SetupSettings throw platform the seat is worn\nFan Start throw platform it is stuck\n");
    {
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        const json valve = AskJson({"explain", "Valve"}, 1);
        EXPECT_EQ(valve["state"], "removed");
        EXPECT_EQ(valve["failure"]["step"], "SetupComponentSettings");
        EXPECT_EQ(valve["failure"]["phase"], "settings");
        EXPECT_NE(valve["failure"]["text"].get<std::string>().find("the seat is worn"), std::string::npos);
        EXPECT_NE(Ask({"explain", "Valve"}).text.find("the seat is worn"), std::string::npos);
        EXPECT_EQ(AskJson({"explain", "Fan"}, 1)["state"], "removed");
        EXPECT_EQ(AskJson({"explain", "Pump"})["state"], "running");
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), 0);
    }
    // A required one ends the start; a component that is held while all is taken down lets the failed system be asked.
    const std::string gate = MakeGate();
    WriteScript("Pump LoadConfig throw own the shaft is broken\nTank1 Dispose await " + gate + "\n");
    StartedProcess main = system.Start();
    const int writer = open(gate.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    const json status = AskJson({"status"}, 1);
    EXPECT_NE(status["failure"]["text"].get<std::string>().find("the shaft is broken"), std::string::npos);
    EXPECT_EQ(status["phase"], "dispose");
    const json pump = AskJson({"explain", "Pump"}, 1);
    EXPECT_EQ(pump["state"], "failed");
    EXPECT_EQ(pump["failure"]["phase"], "config");
    const json failed = AskJson({"timeline"});
    EXPECT_EQ(std::count_if(failed["steps"].begin(), failed["steps"].end(),
                            [](const json& step) { return step["outcome"] == "failed"; }),
              1);
    close(writer);
    EXPECT_EQ(main.AwaitEnd(), 1);
    const json kept = AskJson({"timeline", "--failed"});
    EXPECT_EQ(std::count_if(kept["steps"].begin(), kept["steps"].end(),
                            [](const json& step)
                            { return step["outcome"] == "failed" && step["step"] == "LoadComponentConfig"; }),
              1);
    EXPECT_NE(Ask({"timeline", "--failed", "plot"}).text.find(">failed</text>"), std::string::npos);
}

TEST_F(RunningSystemTest, AChildIsShownBeforeItAnswersAndItsEndAfterwards)
{
    system.WriteSettings("<ProcessSettings singleProcess='false' startWaitTime='60s'/>");
    system.WriteConfig("<Processes><Process name='MainProcess'/>"
                       "<Process name='Deaf' binaryPath='/bin/sleep' args='1000'/></Processes>"
                       "<Libraries><Library name='Recording' binaryPath='" +
                       TestSystem::GetBuiltFile("lib/libRecording.so") +
                       "'/></Libraries>"
                       "<Components><Component name='C' type='Recorder' library='Recording' process='Deaf'/>"
                       "</Components>");
    StartedProcess main = system.Start();
    main.AwaitLine("Process 'MainProcess' started successfully.");
    const json deaf = FindNamed(AskJson({"status"})["processes"], "Deaf");
    EXPECT_EQ(deaf["state"], "starting");
    ASSERT_EQ(kill(deaf["pid"].get<pid_t>(), SIGKILL), 0);
    EXPECT_EQ(main.AwaitEnd(), 1);
    EXPECT_EQ(Ask({"status"}).text, "kiroctl: No system runs in '" + system.GetRuntimeDirectory() +
                                        "'. 'kiroctl crashes last' shows the last failure.\n");
    EXPECT_NE(Ask({"crashes"}).text.find("  failed set-up  Deaf[" + deaf["pid"].dump() + "]: signal 9 (Killed)\n"),
              std::string::npos);
}

TEST_F(RunningSystemTest, TheLogIsFollowedBeyondTheDeathOfAProcess)
{
    Configure({"Left", "Right"}, {{"Tank1", "Left"}, {"Tank2", "Right"}, {"Generic", "*", "Recorder"}});
    // The main process has all the time that the machine needs to be asked for its last words.
    system.WriteSettings("<ProcessSettings singleProcess=\"false\" watchdogDelayTime=\"1h\"/>");
    // Whatever bytes a name has, pictures can be read.
    StartedProcess main = system.Start({"--name=M\xFF\xEF\xBF\xBF"});
    main.AwaitLine("was setup successfully");
    CheckDrawnPage(system.directory, Ask({"timeline", "plot"}).text);
    CheckDrawnPage(system.directory, Ask({"graph", "--running"}).text);
    EXPECT_NE(Ask({"explain", "Generic"}).text.find("Did you mean 'Generic@Left' or 'Generic@Right'?"),
              std::string::npos);

    StartedProcess follow(TestSystem::GetBuiltFile("bin/kiroctl"), {"log", "--follow"}, system.environment);
    follow.AwaitLine("was setup successfully");
    ASSERT_EQ(kill(FindNamed(AskJson({"processes"}), "Left")["pid"].get<pid_t>(), SIGKILL), 0);
    follow.AwaitLine("Process 'Left' has exited unexpectedly");
    main.Signal(SIGKILL);
    EXPECT_EQ(follow.AwaitEnd(), 0) << follow.GetOutput();
    EXPECT_EQ(main.AwaitEnd(), -SIGKILL);
}

TEST_F(RunningSystemTest, ADeadSystemIsUnreachable)
{
    ConfigurePlant();
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    main.Signal(SIGKILL);
    EXPECT_EQ(main.AwaitEnd(), -SIGKILL);
    for (const char* command : {"status", "watch"})
    {
        const Answer answer = Ask({command});
        EXPECT_EQ(answer.code, 3) << answer.text;
        EXPECT_EQ(answer.text, "kiroctl: No system runs in '" + system.GetRuntimeDirectory() + "'; its main process (" +
                                   std::to_string(main.GetId()) + ") has died.\n");
    }
    EXPECT_EQ(Ask({"--runtime-dir", system.directory / "nowhere", "status"}).code, 3);
}
