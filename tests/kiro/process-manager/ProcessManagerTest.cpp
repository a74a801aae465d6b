#include "MappedFiles.hpp"
#include "TestProcess.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

#include <atomic>
#include <thread>

using namespace Vela;
using namespace Vela::System::Kiro;
using namespace Vela::System::Kiro::Internal::Pm;
using namespace Vela::Testing;

namespace
{

class ProcessManagerTest : public TestProcess
{
protected:
    [[nodiscard]] bool HasComponent(const String& name)
    {
        return processManager.GetComponentProvider().GetComponent(name) != nullptr;
    }

    const String recording = GetLibraryPath("Recording");
};

/// One of the operations that take a component's name.
struct Operation
{
    void (ProcessManager::*byName)(const String&) const;
    const char* step;
    const char* message;
};

const Operation operations[] = {
    {&ProcessManager::InitializeComponent, "Initialize", "Initialize of component 'C' called."},
    {&ProcessManager::SubscribeComponentServices, "SubscribeServices", "SubscribeServices of component 'C' called."},
    {&ProcessManager::SetupComponentSettings, "SetupSettings", "SetupSettings of component 'C' called."},
    {&ProcessManager::PublishComponentServices, "PublishServices", "PublishServices of component 'C' called."},
    {&ProcessManager::LoadComponentConfig, "LoadConfig", "LoadConfig of component 'C' called."},
    {&ProcessManager::SetupComponentConfig, "SetupConfig", "SetupConfig of component 'C' called."},
    {&ProcessManager::StartComponent, "Start", "Start of component 'C' called."},
    {&ProcessManager::StopComponent, "Stop", "Stop of component 'C' called."},
    {&ProcessManager::ResetComponentConfig, "ResetConfig", "Reset config of component 'C' called."},
    {&ProcessManager::DisposeComponent, "Dispose", "Dispose of component 'C' called."},
    {&ProcessManager::PowerDownComponent, "PowerDown", "PowerDown of component 'C' called."}};

} // namespace

TEST_F(ProcessManagerTest, UnloadsALibraryWithItsLastUser)
{
    EXPECT_TRUE(processManager.LoadLibrary("R", recording));
    EXPECT_TRUE(log.Contains("Shared Library 'R' with path '" + recording + "' loaded."));
    // The name counts, not the path.
    EXPECT_TRUE(processManager.TryLoadLibrary("R", "/does/not/exist.so"));
    EXPECT_EQ(processManager.GetLibrary("R").referenceCount, 2U);

    processManager.UnloadLibrary("R");
    EXPECT_TRUE(IsMapped(recording));
    EXPECT_FALSE(log.Contains("unloaded"));
    processManager.UnloadLibrary("R");
    EXPECT_FALSE(IsMapped(recording));
    EXPECT_TRUE(log.Contains("Shared Library 'R' unloaded."));
    EXPECT_EQ(GetMessageOf<KeyNotFoundException>([&] { processManager.UnloadLibrary("R"); }),
              "Could not find library 'R'.");
}

TEST_F(ProcessManagerTest, KeepsNoEntryOfALibraryThatDidNotLoad)
{
    EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { processManager.LoadLibrary("X", "/no/libX.so"); }),
              "Library '/no/libX.so' does not exist.");
    EXPECT_EQ(GetMessageOf<KeyNotFoundException>([&] { processManager.GetLibrary("X"); }), "Library 'X' not found.");
    EXPECT_TRUE(processManager.LoadLibrary("X", recording));
}

TEST_F(ProcessManagerTest, CreatesComponentsOfALoadedLibrary)
{
    EXPECT_EQ(GetMessageOf<KeyNotFoundException>([&] { processManager.CreateComponent("Recorder", "C", "R"); }),
              "Library 'R' not found.");
    processManager.LoadLibrary("R", recording);
    EXPECT_EQ(processManager.CreateComponent("Recorder:controller:system:order=5", "C", "R"),
              (ComponentProperties{5, ComponentCategory::System, true, true}));
    EXPECT_EQ(processManager.CreateComponent("RecordingNone", "D", "R"),
              (ComponentProperties{100000, ComponentCategory::None, false, false}));
    EXPECT_TRUE(log.Contains("Component 'D' of type 'RecordingNone' (Version 1.2.3.4) from library 'R created."));
    EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { processManager.CreateComponent("Pump", "E", "R"); }),
              "There is no recorder of type 'Pump'.");
    EXPECT_FALSE(HasComponent("E"));

    processManager.LoadLibrary("N", GetLibraryPath("NoEntry"));
    EXPECT_NE(GetMessageOf<InvalidOperationException>([&] { processManager.CreateComponent("Pump", "E", "N"); }), "");
}

TEST_F(ProcessManagerTest, ReportsStaticComponentsAsNeitherSystemNorController)
{
    EXPECT_EQ(processManager.CreateComponent("Controller", "C", ""),
              (ComponentProperties{77, ComponentCategory::System, false, false}));
    EXPECT_TRUE(log.Contains("Component 'C' of type 'Controller' from static library created."));
    for (const String type : {"Pump", "Nothing"})
    {
        EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { processManager.CreateComponent(type, "D", ""); }),
                  "CreateStaticComponent: Can't create component 'D' of type " + type +
                      ", because no registered factory method for this type exists.");
    }
}

TEST_F(ProcessManagerTest, RefusesTakenNamesAndSecondSingletons)
{
    processManager.LoadLibrary("R", recording);
    processManager.CreateComponent("RecordingSingleton", "S", "R");
    processManager.CreateComponent("Recorder", "C", "R");
    const auto create = [&](const String& name)
    {
        return GetMessageOf<InvalidOperationException>(
            [&] { processManager.CreateComponent("RecordingSingleton", name, "R"); });
    };
    EXPECT_EQ(create("S"), "Component 'S' yet exists");
    EXPECT_EQ(create("T"), "Component type Vela::Testing::SingularRecorder<Vela::Testing::Recorder> is a singleton "
                           "and might only be instantiated once.");
    EXPECT_FALSE(HasComponent("T"));
    processManager.DestroyComponent("S");
    EXPECT_EQ(create("T"), "");
}

TEST_F(ProcessManagerTest, TakesEachStepOfAComponentAndLogsItAfterwards)
{
    processManager.CreateComponent("Controller", "C", "");
    for (const Operation& operation : operations)
    {
        const auto [byName, step, message] = operation;
        record = {};
        record.failing = {step};
        EXPECT_THROW((processManager.*byName)("C"), StepFailure) << step;
        EXPECT_FALSE(log.Contains(message)) << step;

        record = {};
        (processManager.*byName)("C");
        EXPECT_EQ(record.steps, std::vector<String>{step});
        EXPECT_TRUE(log.Contains(message)) << log.GetText();
        EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { (processManager.*operation.byName)("X"); }),
                  "Component 'X' does not exist");
    }
    record = {};
    processManager.LoadComponentSettings("C", "/a/b");
    EXPECT_EQ(record.steps, std::vector<String>{"LoadSettings /a/b"});
    EXPECT_TRUE(log.Contains("LoadSettings of component 'C' with path '/a/b' called."));
}

TEST_F(ProcessManagerTest, LeavesAloneWhatIsNoController)
{
    processManager.CreateComponent("Plain", "C", "");
    processManager.StartComponent("C");
    processManager.StopComponent("C");
    EXPECT_TRUE(record.steps.empty());
    EXPECT_FALSE(log.Contains("of component 'C' called"));
}

TEST_F(ProcessManagerTest, DestroysAComponentWithoutFurtherSteps)
{
    processManager.CreateComponent("Plain", "C", "");
    processManager.DestroyComponent("C");
    EXPECT_EQ(record.steps, std::vector<String>{"Destroyed"});
    EXPECT_TRUE(log.Contains("Component 'C' destroyed."));
    EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { processManager.DestroyComponent("C"); }),
              "Component 'C' does not exist");
}

TEST_F(ProcessManagerTest, KeepsALibraryWhoseComponentSomebodyHolds)
{
    const TemporaryDirectory directory;
    const String path = directory / "libHeld.so";
    std::filesystem::copy_file(recording, path);
    processManager.LoadLibrary("H", path);
    processManager.CreateComponent("Recorder", "C", "H");
    const auto held = processManager.GetComponentProvider().GetComponent("C");
    processManager.DestroyComponent("C");
    processManager.UnloadLibrary("H");
    EXPECT_TRUE(IsMapped(path));
    EXPECT_EQ(held->GetName(), "C");
    EXPECT_TRUE(log.Contains("Shared Library 'H' is still in use and stays mapped."));
}

TEST_F(ProcessManagerTest, DropsEverythingWhenItIsDisposed)
{
    processManager.LoadLibrary("R", recording);
    processManager.LoadLibrary("R", recording);
    processManager.CreateComponent("Recorder", "C", "R");
    processManager.CreateComponent("Plain", "D", "");
    processManager.Dispose();
    EXPECT_FALSE(HasComponent("C"));
    EXPECT_EQ(record.steps, std::vector<String>{"Destroyed"});
    EXPECT_FALSE(IsMapped(recording));
}

TEST_F(ProcessManagerTest, AsksExternalProvidersForOtherComponents)
{
    const auto outside = std::make_shared<ComponentProvider>();
    processManager.CreateComponent("Plain", "C", "");
    outside->AddComponent(processManager.GetComponentProvider().GetComponent("C"));
    processManager.DestroyComponent("C");

    processManager.GetComponentProvider().AddExternalProvider(outside);
    processManager.InitializeComponent("C");
    EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { processManager.CreateComponent("Plain", "C", ""); }),
              "Component 'C' yet exists");
    EXPECT_THROW(processManager.DestroyComponent("C"), InvalidOperationException);

    processManager.GetComponentProvider().RemoveExternalProvider(outside);
    EXPECT_FALSE(HasComponent("C"));
    processManager.GetComponentProvider().RemoveExternalProvider(outside);
}

TEST_F(ProcessManagerTest, AsksItsHostToEndTheProcess)
{
    processManager.ShutdownProcess();
    EXPECT_EQ(host.shutdownRequests, 1);
}

TEST_F(ProcessManagerTest, ServesSeveralThreadsAtATime)
{
    constexpr int threadCount = 4;
    constexpr int rounds = 25;
    std::atomic<int> singletons = 0;
    const auto work = [&](int number)
    {
        const String name = "C" + std::to_string(number);
        for (int i = 0; i < rounds; ++i)
        {
            processManager.LoadLibrary("R", recording);
            processManager.CreateComponent("RecordingController", name, "R");
            processManager.StartComponent(name);
            singletons += GetMessageOf<InvalidOperationException>(
                              [&]
                              {
                                  processManager.CreateComponent("RecordingSingleton", "S" + name, "R");
                                  processManager.DestroyComponent("S" + name);
                              }).empty()
                              ? 1
                              : 0;
            processManager.DestroyComponent(name);
            processManager.UnloadLibrary("R");
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int number = 0; number < threadCount; ++number)
    {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_GT(singletons, 0);
    EXPECT_TRUE(processManager.GetComponentProvider().GetComponents().empty());
    EXPECT_THROW(processManager.GetLibrary("R"), KeyNotFoundException);
}
