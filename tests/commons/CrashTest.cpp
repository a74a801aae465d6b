// Crashes of a process of its own, and the records that they leave.

#include "StartedProcess.hpp"
#include "TemporaryDirectory.hpp"
#include "TestSystem.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <map>

using namespace Vela;
using Vela::System::Commons::Diagnostics::CrashRecords;
using Vela::Testing::StartedProcess;
using Vela::Testing::TemporaryDirectory;
using Vela::Testing::TestSystem;

#ifndef VELA_SANITIZED
namespace
{

struct CrashCase
{
    const char* name;
    int signal;
    const char* signalText;
    /// The address that the system names; empty when it names none.
    const char* address;
};

const CrashCase crashCases[] = {
    {"null", SIGSEGV, "SIGSEGV (11)", "0x0"},
    {"jump", SIGSEGV, "SIGSEGV (11)", "0x0"},
    {"overflow", SIGSEGV, "SIGSEGV (11)", ""},
    {"abort", SIGABRT, "SIGABRT (6)", ""},
    {"bus", SIGBUS, "SIGBUS (7)", ""},
    {"raise", SIGFPE, "SIGFPE (8)", ""},
    {"crowd", SIGSEGV, "SIGSEGV (11)", "0x0"},
    {"unheard", SIGSEGV, "SIGSEGV (11)", "0x0"},
#ifndef __arm__
    // The emulator that runs the tests for ARM tells of the crash there as well, and waits until that is read.
    {"stuck", SIGSEGV, "SIGSEGV (11)", "0x0"},
#endif
};

} // namespace

TEST(Crash, SaysWhatHappenedWhereAndDiesOfIt)
{
    for (const CrashCase& crash : crashCases)
    {
        const TemporaryDirectory directory;
        StartedProcess process(TestSystem::GetBuiltFile("tests/test-commons-helper"),
                               {"crash", directory.GetPath().string(), crash.name});
        EXPECT_EQ(process.AwaitEnd(), -crash.signal) << crash.name << process.GetOutput();
        const CrashRecords records(directory.GetPath().string());
        ASSERT_EQ(records.List().size(), 1U) << crash.name;
        const auto fields = records.Read(records.List().front());
        std::map<String, String> record(fields.begin(), fields.end());
        EXPECT_EQ(record["reason"], "crash");
        EXPECT_EQ(record["process"], "Helper");
        EXPECT_EQ(record["signal"], crash.signalText) << crash.name;
        EXPECT_TRUE(record["thread"].starts_with("Crasher (")) << record["thread"];
        EXPECT_EQ(record["component"], crash.name);
        EXPECT_EQ(record["step"], "Crash");
        if (*crash.address != '\0')
        {
            EXPECT_EQ(record["address"], crash.address) << crash.name;
        }
#ifdef __arm__
        // There is no way back from where the C library aborts.
        const bool isEndOfWay = crash.signal == SIGABRT;
#else
        const bool isEndOfWay = false;
#endif
        const char* module = isEndOfWay ? "libc.so.6+0x" : "test-commons-helper+0x";
        EXPECT_NE(record["stack"].find(module), String::npos) << crash.name << record["stack"];
        EXPECT_NE(record["log"].find("Helper: is about to crash"), String::npos) << record["log"];
        EXPECT_EQ(process.CountOutput("component: " + std::string(crash.name)),
                  crash.name == std::string("unheard") || crash.name == std::string("stuck") ? 0 : 1)
            << process.GetOutput();
        EXPECT_EQ(records.FindOf(process.GetId(), 0), records.List().front());
    }
}

TEST(Crash, LeavesHandlersOfOthersAloneAndTakesItsOwnBack)
{
    for (const char* mode : {"foreign", "withdrawn"})
    {
        const TemporaryDirectory directory;
        StartedProcess process(TestSystem::GetBuiltFile("tests/test-commons-helper"),
                               {"crash", directory.GetPath().string(), mode});
        EXPECT_EQ(process.AwaitEnd(), mode == std::string("foreign") ? 7 : -SIGABRT) << process.GetOutput();
        EXPECT_FALSE(process.HasOutput("reason: crash"));
        EXPECT_TRUE(CrashRecords(directory.GetPath().string()).List().empty());
    }
}
#endif

TEST(CrashRecords, KeepTheYoungestAndReadBackWhatWasWritten)
{
    const TemporaryDirectory directory;
    for (int number = 10; number < 22; ++number)
    {
        directory.Write("crashes/202401" + std::to_string(number) + "T000000Z-1.txt", "reason: old\n");
    }
    directory.Write("crashes/notes", "not a record");
    const CrashRecords records(directory.GetPath().string());
    EXPECT_TRUE(CrashRecords((directory.GetPath() / "none").string()).List().empty());

    const String name = records.Begin({{"reason", "test"}, {"log", "one\ntwo: 2\n\nfour"}});
    records.Append(name, {{"failure", "more"}});
    EXPECT_EQ(records.List().size(), CrashRecords::mostRecords);
    EXPECT_EQ(records.List().front(), "20240113T000000Z-1.txt") << "the oldest are gone";
    EXPECT_EQ(records.List().back(), name);
    EXPECT_EQ(directory.Read("crashes/notes"), "not a record");
    const std::time_t now = std::time(nullptr);
    EXPECT_EQ(records.FindOf(::getpid(), now - 3600), name);
    EXPECT_EQ(records.FindOf(::getpid(), now + 3600), "") << "of an earlier process of that number";
    EXPECT_EQ(records.FindOf(2, 0), "");

    const auto fields = records.Read(name);
    ASSERT_EQ(fields.size(), 4U);
    EXPECT_EQ(fields[0], (std::pair<String, String>("reason", "test")));
    EXPECT_EQ(fields[1].first, "time");
    EXPECT_EQ(fields[2], (std::pair<String, String>("log", "one\ntwo: 2\n\nfour")));
    EXPECT_EQ(fields[3], (std::pair<String, String>("failure", "more")));
    for (const char* wrong : {"none.txt", "../crashes/notes", "."})
    {
        EXPECT_THROW(static_cast<void>(records.Read(wrong)), Exception) << wrong;
    }

    // The clock may have been set back since the others were written.
    for (int number = 10; number < 30; ++number)
    {
        directory.Write("crashes/999901" + std::to_string(number) + "T000000Z-1.txt", "reason: to come\n");
    }
    records.RemoveOldest();
    const String early = records.Begin({{"reason", "early"}});
    EXPECT_EQ(records.List().size(), CrashRecords::mostRecords);
    EXPECT_EQ(records.List().front(), early);
}
