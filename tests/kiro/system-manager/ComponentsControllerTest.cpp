#include "CapturedLog.hpp"
#include "FakeHost.hpp"
#include "FakeProcess.hpp"

#include <Config/KiroConfiguration.hpp>
#include <Sm/ComponentsController.hpp>
#include <Sm/ProcessesController.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::Testing;
using namespace Vela::System::Kiro;
using namespace Vela::System::Kiro::Internal::Sm;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

using Properties = FakeProcess::Properties;

class ComponentsControllerTest : public testing::Test
{
protected:
    /// Adds a process that is connected.
    FakeProcess& AddProcess(const std::string& name)
    {
        auto service = std::make_shared<FakeProcess>(name, journal);
        auto process = std::make_shared<Data::ProcessData>();
        process->name = name;
        process->processManagerService = service;
        processes[name] = process;
        return *service;
    }

    static Config::Component MakeComponent(const std::string& name, const std::string& process, bool isRequired = true)
    {
        Config::Component component(name, "Type", "", Config::Settings(name + ".settings"));
        component.process = process;
        component.isRequired = isRequired;
        return component;
    }

    void Configure(const std::vector<Config::Component>& components, bool singleProcess = false)
    {
        for (const auto& component : components)
        {
            configuration.components.AddItem(component);
        }
        controller.SetupConfig(configuration, singleProcess);
        controller.CreateComponents();
        journal.Take();
    }

    /// Components "one" to "three" of the main process, which start in this order.
    FakeProcess& ConfigureThree(bool isRequired)
    {
        FakeProcess& main = AddProcess("Main");
        main.properties = {{"one", Ordered(1)}, {"two", Ordered(2)}, {"three", Ordered(3)}};
        Configure({MakeComponent("one", "Main", isRequired), MakeComponent("two", "Main", isRequired),
                   MakeComponent("three", "Main", isRequired)});
        return main;
    }

    static Properties Ordered(std::uint32_t startOrder)
    {
        return {startOrder, ComponentCategory::Custom, false, true};
    }

    /// The components' names in execution order.
    std::vector<std::string> GetNames() const
    {
        std::vector<std::string> names;
        for (const auto& [startOrder, entry] : controller.GetExecutionList())
        {
            names.push_back(entry.component->name);
        }
        return names;
    }

    CapturedLog log;
    Journal journal;
    FakeHost host;
    Data::ProcessTable processes;
    SlowCallWatcher slowCalls{std::chrono::milliseconds(0)};
    ComponentsController controller{host, processes, slowCalls};
    Config::KiroConfiguration configuration;
};

} // namespace

TEST_F(ComponentsControllerTest, WalksAllProcessesByStartOrderThenProcessThenName)
{
    FakeProcess& a = AddProcess("A");
    FakeProcess& b = AddProcess("B");
    AddProcess("Main");
    a.properties = {{"a1", Ordered(5)}, {"a2", Ordered(7)}};
    b.properties = {{"b1", Ordered(5)}, {"b2", Ordered(9)}};
    auto early = MakeComponent("b2", "B");
    early.hasStartOrder = true;
    early.startOrder = 1;
    Configure({MakeComponent("b1", "B"), MakeComponent("a2", "A"), MakeComponent("a1", "A"), early,
               MakeComponent("unassigned", "")});
    EXPECT_THAT(GetNames(), ElementsAre("unassigned", "b2", "a1", "b1", "a2"));
    EXPECT_TRUE(log.Has("Debug: Start order of Component 'b2' was overwritten by configuration. (Original: 9 "
                        "Configured:1)"));

    controller.SetupComponentsSettings();
    EXPECT_TRUE(controller.SetupComponentsConfig());
    journal.Take();
    EXPECT_TRUE(controller.StartComponents());
    EXPECT_THAT(journal.Take(), ElementsAre("Main: StartComponent unassigned", "B: StartComponent b2",
                                            "A: StartComponent a1", "B: StartComponent b1", "A: StartComponent a2"));
    controller.StopComponents();
    EXPECT_THAT(journal.Take(), ElementsAre("A: StopComponent a2", "B: StopComponent b1", "A: StopComponent a1",
                                            "B: StopComponent b2", "Main: StopComponent unassigned"));
}

TEST_F(ComponentsControllerTest, TakesAComponentThroughEveryStepAndSaysSo)
{
    AddProcess("Main");
    configuration.libraries.AddItem(Config::Library("Pumps", "/lib/libPumps.so"));
    auto component = MakeComponent("pump", "Main");
    component.library = "Pumps";
    configuration.components.AddItem(component);
    controller.SetupConfig(configuration, false);
    EXPECT_EQ(processes["Main"]->libraries.at("Pumps")->path, "/lib/libPumps.so");

    controller.CreateComponents();
    controller.SetupComponentsSettings();
    controller.SetupComponentsSettings();
    controller.SetupComponentsConfig();
    controller.StartComponents();
    controller.StartComponents();
    controller.PowerDownComponents();
    controller.Dispose();
    EXPECT_THAT(journal.Take(),
                ElementsAre("Main: CreateComponent Type pump Pumps", "Main: InitializeComponent pump",
                            "Main: SubscribeComponentServices pump", "Main: LoadComponentSettings pump pump.settings",
                            "Main: SetupComponentSettings pump", "Main: PublishComponentServices pump",
                            "Main: LoadComponentConfig pump", "Main: SetupComponentConfig pump",
                            "Main: StartComponent pump", "Main: PowerDownComponent pump", "Main: StopComponent pump",
                            "Main: ResetComponentConfig pump", "Main: DisposeComponent pump",
                            "Main: DestroyComponent pump"));
    EXPECT_THAT(log.GetLines(), ElementsAre("Debug: Parse component configuration.",
                                            "Debug: Creating component 'pump' in process 'Main'.",
                                            "Info: Component 'pump' in process 'Main' created.",
                                            "Debug: Setting up component 'pump' in process 'Main'.",
                                            "Debug: Setuped component'pump' in process 'Main' .",
                                            "Debug: Configuring component 'pump' in process 'Main'.",
                                            "Debug: Configured component'pump' in process 'Main' .",
                                            "Debug: Starting component 'pump' in process 'Main'.",
                                            "Debug: Started component'pump' in process 'Main'.",
                                            "Debug: PowerDown component 'pump' in process 'Main'.",
                                            "Debug: PowerDown component 'pump' in process 'Main' done.",
                                            "Debug: Stopping component 'pump' in process 'Main'.",
                                            "Debug: Stopped component'pump' in process 'Main'.",
                                            "Debug: Resetting config of component 'pump' in process 'Main'.",
                                            "Debug: Reset config of component 'pump' in process 'Main'.",
                                            "Debug: Disposing component 'pump' in process 'Main'.",
                                            "Debug: Disposed component'pump' in process 'Main'.",
                                            "Debug: Destroying component 'pump' in process 'Main'.",
                                            "Debug: Destroyed component 'pump' in process 'Main' ."));
    EXPECT_TRUE(controller.GetExecutionList().empty());
    controller.Dispose();
    EXPECT_THAT(journal.Take(), IsEmpty());
}

TEST_F(ComponentsControllerTest, LeavesOutWhatDoesNotTakePartInAPhase)
{
    FakeProcess& main = AddProcess("Main");
    AddProcess("Unconnected");
    processes["Unconnected"]->processManagerService.reset();
    processes["Unconnected"]->isExternal = true;
    main.properties = {{"none", {1, ComponentCategory::None, false, true}},
                       {"plain", {2, ComponentCategory::Service, false, false}},
                       {"disabled", {3, ComponentCategory::Custom, false, true}}};
    auto disabled = MakeComponent("disabled", "Main");
    disabled.isEnabled = false;
    Configure({MakeComponent("none", "Main"), MakeComponent("plain", "Main"), disabled,
               MakeComponent("remote", "Unconnected")});
    EXPECT_THAT(GetNames(), ElementsAre("plain", "disabled"));
    EXPECT_TRUE(log.Has("Info: Component 'remote' is not created: its process 'Unconnected' is external."));
    EXPECT_TRUE(log.Has("Warning: Component 'none' in process 'Main' ignored for execution: Component category is "
                        "'None'."));

    controller.SetupComponentsSettings();
    EXPECT_TRUE(controller.SetupComponentsConfig());
    EXPECT_TRUE(controller.StartComponents());
    controller.PowerDownComponents();
    controller.Dispose();
    const auto calls = journal.Take();
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const auto& call) { return call.find("disabled") != std::string::npos; }),
              1);
    EXPECT_THAT(calls, testing::Contains("Main: DestroyComponent disabled"));
    EXPECT_THAT(calls, testing::Not(testing::Contains(HasSubstr("none"))));
    EXPECT_THAT(calls, testing::Not(testing::Contains("Main: StartComponent plain")));
    EXPECT_THAT(calls, testing::Contains("Main: PowerDownComponent plain"));
}

TEST_F(ComponentsControllerTest, RefusesAConfigurationThatNamesWhatIsNotThere)
{
    AddProcess("Main");
    configuration.components.AddItem(MakeComponent("lost", "Nowhere"));
    try
    {
        controller.SetupConfig(configuration, false);
        FAIL();
    }
    catch (const InvalidConfigException& exception)
    {
        EXPECT_EQ(exception.GetMessage(),
                  "Component 'lost' has an invalid configuration: Process 'Nowhere' is unknown.");
    }
    // In a single process it does not matter where a component was to live.
    EXPECT_NO_THROW(controller.SetupConfig(configuration, true));
    EXPECT_EQ(processes["Main"]->components.count("lost"), 1U);

    auto component = MakeComponent("bookless", "Main");
    component.library = "Missing";
    configuration.components.AddItem(component);
    try
    {
        controller.SetupConfig(configuration, true);
        FAIL();
    }
    catch (const InvalidConfigException& exception)
    {
        EXPECT_EQ(exception.GetMessage(),
                  "Component 'bookless' has an invalid configuration: Library 'Missing' is unknown.");
    }
}

TEST_F(ComponentsControllerTest, EndsCreationAtTheFirstFailure)
{
    FakeProcess& main = AddProcess("Main");
    main.reactions["CreateComponent Type b "] = Throw(KeyNotFoundException("Library 'x' not found."));
    configuration.components.AddItem(MakeComponent("a", "Main"));
    configuration.components.AddItem(MakeComponent("b", "Main", false));
    configuration.components.AddItem(MakeComponent("c", "Main"));
    controller.SetupConfig(configuration, false);
    EXPECT_THROW(controller.CreateComponents(), KeyNotFoundException);
    EXPECT_THAT(GetNames(), ElementsAre("a"));

    journal.Take();

    AddProcess("Main");
    auto tooLong = std::make_shared<Data::ComponentData>();
    tooLong->name = std::string(512, 'x');
    processes["Main"]->components["long"] = tooLong;
    EXPECT_THROW(controller.CreateComponents(), ArgumentException);
    EXPECT_THAT(journal.Take(), IsEmpty());
}

TEST_F(ComponentsControllerTest, UndoesTheSettingsPhaseWhenARequiredComponentFails)
{
    FakeProcess& main = ConfigureThree(true);
    main.reactions["LoadComponentSettings two two.settings"] = Throw(XmlException("broken"));
    // A failure while undoing is logged; it neither ends the roll-back nor takes the place of the first one.
    main.reactions["DisposeComponent two"] = Throw(42);
    EXPECT_THROW(controller.SetupComponentsSettings(), XmlException);
    EXPECT_THAT(journal.Take(),
                ElementsAre("Main: InitializeComponent one", "Main: SubscribeComponentServices one",
                            "Main: LoadComponentSettings one one.settings", "Main: SetupComponentSettings one",
                            "Main: PublishComponentServices one", "Main: InitializeComponent two",
                            "Main: SubscribeComponentServices two", "Main: LoadComponentSettings two two.settings",
                            "Main: DisposeComponent two", "Main: DisposeComponent one"));
    EXPECT_THAT(
        log.GetLines("Error"),
        ElementsAre("Error: Exception occurs while setting up component 'two': XmlException: broken",
                    "Error: Exception occurs while setting up settings of component 'two': XmlException: broken",
                    "Error: Unspecified exception occurs while disposing component 'two'"));
    // Marks are gone also where the call failed: the end of the system does not dispose a second time.
    controller.DisposeComponents();
    EXPECT_THAT(journal.Take(), IsEmpty());
    EXPECT_THAT(GetNames(), ElementsAre("one", "two", "three"));
}

TEST_F(ComponentsControllerTest, UndoesTheConfigurationPhaseWhenARequiredComponentFails)
{
    FakeProcess& main = ConfigureThree(true);
    controller.SetupComponentsSettings();
    journal.Take();
    main.reactions["SetupComponentConfig two"] = Throw(std::runtime_error("no such valve"));
    EXPECT_THROW(controller.SetupComponentsConfig(), std::runtime_error);
    EXPECT_THAT(journal.Take(), ElementsAre("Main: LoadComponentConfig one", "Main: SetupComponentConfig one",
                                            "Main: LoadComponentConfig two", "Main: SetupComponentConfig two",
                                            "Main: ResetComponentConfig two", "Main: ResetComponentConfig one"));
    EXPECT_EQ(log.Count("Error: Exception occurs while setting up config of component 'two': no such valve"), 2);
    controller.ResetComponentsConfig();
    EXPECT_THAT(journal.Take(), IsEmpty());
    controller.DisposeComponents();
    EXPECT_THAT(journal.Take(), ElementsAre("Main: DisposeComponent three", "Main: DisposeComponent two",
                                            "Main: DisposeComponent one"));
}

TEST_F(ComponentsControllerTest, RemovesOptionalComponentsThatFail)
{
    FakeProcess& main = ConfigureThree(false);
    main.reactions["InitializeComponent one"] = Throw(Exception("dry"));
    main.reactions["LoadComponentConfig two"] = Throw(42);
    main.reactions["StartComponent three"] = Throw(std::runtime_error("stuck"));
    main.reactions["DisposeComponent three"] = Throw(std::runtime_error("still stuck"));

    controller.SetupComponentsSettings();
    EXPECT_THAT(GetNames(), ElementsAre("two", "three"));
    EXPECT_FALSE(controller.SetupComponentsConfig());
    EXPECT_THAT(GetNames(), ElementsAre("three"));
    EXPECT_TRUE(controller.StartComponents());
    EXPECT_THAT(GetNames(), IsEmpty());

    const auto calls = journal.Take();
    EXPECT_THAT(
        std::vector(calls.end() - 3, calls.end()),
        ElementsAre("Main: StartComponent three", "Main: DisposeComponent three", "Main: DestroyComponent three"));
    EXPECT_THAT(log.GetLines("Error"),
                ElementsAre("Error: Exception occurs while setting up component 'one': Exception: dry",
                            "Error: Component 'one' will be disposed and removed.",
                            "Error: Unspecified exception occurs while setting up config of component 'two'",
                            "Error: Component 'two' will be disposed and removed.",
                            "Error: Exception occurs while starting component 'three': stuck",
                            "Error: Component 'three' will be disposed and removed.",
                            "Error: Exception occurs while disposing component 'three': still stuck"));
    EXPECT_FALSE(processes["Main"]->components["one"]->isCreated);
}

TEST_F(ComponentsControllerTest, StartsTheOthersWhenARequiredComponentDoesNotStart)
{
    FakeProcess& main = ConfigureThree(true);
    controller.SetupComponentsSettings();
    controller.SetupComponentsConfig();
    journal.Take();
    main.reactions["StartComponent one"] = Throw(Exception("no power"));
    EXPECT_FALSE(controller.StartComponents());
    EXPECT_THAT(journal.Take(),
                ElementsAre("Main: StartComponent one", "Main: StartComponent two", "Main: StartComponent three"));
    EXPECT_EQ(log.Count("Error: Exception occurs while starting component 'one': Exception: no power"), 2);
    controller.StopComponents();
    EXPECT_THAT(journal.Take(),
                ElementsAre("Main: StopComponent three", "Main: StopComponent two", "Main: StopComponent one"));
}

TEST_F(ComponentsControllerTest, TakesASystemComponentAsRequiredWhateverIsConfigured)
{
    FakeProcess& main = AddProcess("Main");
    main.properties = {{"core", {1, ComponentCategory::System, true, false}}};
    main.reactions["InitializeComponent core"] = Throw(Exception("fails"));
    Configure({MakeComponent("core", "Main", false)});
    EXPECT_THROW(controller.SetupComponentsSettings(), Exception);
}

TEST_F(ComponentsControllerTest, GoesOnInBackwardPhasesAndTellsOfTheFirstFailedDestructionAtTheEnd)
{
    FakeProcess& main = ConfigureThree(true);
    controller.SetupComponentsSettings();
    controller.SetupComponentsConfig();
    controller.StartComponents();
    journal.Take();
    main.reactions["StopComponent three"] = Throw(Exception("jammed"));
    main.reactions["ResetComponentConfig two"] = Throw(42);
    main.reactions["PowerDownComponent one"] = Throw(std::runtime_error("hot"));
    main.reactions["DestroyComponent three"] = Throw(InvalidOperationException("Component 'three' does not exist"));
    main.reactions["DestroyComponent one"] = Throw(Exception("second"));

    controller.PowerDownComponents();
    controller.StopComponents();
    controller.StopComponents();
    controller.ResetComponentsConfig();
    controller.DisposeComponents();
    EXPECT_THROW(controller.DestroyComponents(), InvalidOperationException);
    EXPECT_EQ(journal.Take().size(), 15U);
    EXPECT_THAT(log.GetLines("Error"),
                ElementsAre("Error: Exception occurs while powerdown component 'one': hot",
                            "Error: Exception occurs while stopping component 'three': Exception: jammed",
                            "Error: Unspecified exception occurs while resetting config of component 'two'",
                            HasSubstr("while destroying component 'three'"),
                            HasSubstr("while destroying component 'one'")));
    EXPECT_TRUE(controller.GetExecutionList().empty());
    EXPECT_NO_THROW(controller.DestroyComponents());
}

TEST_F(ComponentsControllerTest, KnowsAComponentByItsName)
{
    ConfigureThree(true);
    Data::ComponentExecutionData data;
    EXPECT_TRUE(controller.TryGetComponentData("two", data));
    EXPECT_EQ(data.startOrder, 2U);
    EXPECT_EQ(data.process->name, "Main");
    EXPECT_FALSE(controller.TryGetComponentData("four", data));
    controller.RemoveComponent("four");
    EXPECT_TRUE(log.Has("Error: Component 'four' will be disposed and removed."));
    EXPECT_EQ(GetNames().size(), 3U);
}
