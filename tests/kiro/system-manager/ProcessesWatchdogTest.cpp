#include "CapturedLog.hpp"
#include "FakeHost.hpp"

#include <Settings/KiroSettings.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Sm/ProcessesWatchdog.hpp>

#include <TemporaryDirectory.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

using namespace Vela;
using namespace Vela::Testing;
using namespace Vela::System::Kiro::Internal;
using namespace Vela::System::Kiro::Internal::Sm;
using testing::ElementsAre;

TEST(ProcessesWatchdog, KillsAllOthersAndAbortsWhenAChildHasGone)
{
    CapturedLog log;
    FakeHost host;
    Data::ProcessTable processes;
    for (const char* name : {"Main", "Crashed", "Survivor"})
    {
        processes[name] = std::make_shared<Data::ProcessData>();
    }
    auto& crashed = processes["Crashed"]->process;
    auto& survivor = processes["Survivor"]->process;
    crashed.Start("", "/bin/sleep", "1000");
    survivor.Start("", "/bin/sleep", "1000");
    const TemporaryDirectory directory;
    Settings::KiroSettings settings;
    Settings::KiroSettingsLoader::Load(
        directory.Write("test.settings",
                        "<KiroSettingsDocument><ProcessSettings singleProcess='false' watchdogDelayTime='1ms'/>"
                        "</KiroSettingsDocument>"),
        settings, false);
    int aborts = 0;
    ProcessesWatchdog watchdog(host, processes, settings.GetProcessSettings(), [&aborts] { ++aborts; });
    watchdog.Look();
    EXPECT_EQ(aborts, 0);
    EXPECT_EQ(watchdog.FindFault({}), "");

    ASSERT_EQ(kill(crashed.GetId(), SIGKILL), 0);
    crashed.WaitForExit(-1);
    watchdog.Look();
    EXPECT_EQ(aborts, 1);
    EXPECT_EQ(watchdog.FindFault({}), "A process has exited unexpectedly.");
    EXPECT_TRUE(survivor.HasExited());
    EXPECT_THAT(log.GetLines("Fatal"), ElementsAre("Fatal: Process 'Crashed' has exited unexpectedly.",
                                                   "Fatal: All other living processes terminated immediately.",
                                                   "Fatal: Process 'Crashed' ended: signal 9 (Killed)."));
    EXPECT_THAT(host.records, ElementsAre("process gone", "Crashed: signal 9 (Killed)", "Survivor: running"));
}
