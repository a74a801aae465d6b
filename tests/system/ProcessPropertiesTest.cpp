// What a process of a system takes over from its surroundings, and what it looks like from outside.

#include "SystemFixture.hpp"

#include <filesystem>
#include <fstream>
#include <set>

namespace Vela::Testing
{
namespace
{

class ProcessPropertiesTest : public SystemTest
{
protected:
    ProcessPropertiesTest()
    {
        Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}, {"InMain", "MainProcess"}});
        system.WriteSettings("<LogSettings logDir='log'/>");
    }

    [[nodiscard]] StartedProcess StartBehind(const std::string& commands) const
    {
        return StartedProcess(
            "/bin/sh", {"-c", commands + "; exec '" + TestSystem::GetBuiltFile("bin/Vela.System.Application") + "'"},
            system.environment, system.directory.GetPath().string());
    }

    void AwaitSetup() const
    {
        while (system.directory.Read("log/MainProcess.log").find(isUp) == std::string::npos)
        {
            std::this_thread::yield();
        }
    }

    [[nodiscard]] std::string ReadProcess(pid_t process, const std::string& file) const
    {
        std::ifstream stream("/proc/" + std::to_string(process) + "/" + file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    static std::filesystem::perms GetMode(const std::string& file)
    {
        return std::filesystem::symlink_status(file).permissions();
    }
};

TEST_F(ProcessPropertiesTest, ItsFilesAreItsOwnWhateverTheMaskAndLimitsGoOnToChildren)
{
    using std::filesystem::perms;
    for (const char* mask : {"0000", "0077"})
    {
        StartedProcess main = StartBehind("umask " + std::string(mask) + "; ulimit -c 4");
        AwaitSetup();
        const std::string run = system.GetRuntimeDirectory();
        EXPECT_EQ(GetMode(run + "/MainProcess.socket"), perms::owner_read | perms::owner_write) << mask;
        EXPECT_EQ(GetMode(run + "/Left.socket"), perms::owner_read | perms::owner_write) << mask;
        EXPECT_EQ(GetMode(run + "/system-lock"), perms::owner_read | perms::owner_write) << mask;
        EXPECT_EQ(GetMode(system.directory / "log/MainProcess.log") & (perms::group_write | perms::others_write),
                  perms::none)
            << mask;
        const pid_t child = StartedProcess::GetProcessId(system.directory.Read("log/Left.log"));
        for (const pid_t process : {main.GetId(), child})
        {
            EXPECT_NE(ReadProcess(process, "status").find("Umask:\t" + std::string(mask)), std::string::npos);
#ifndef VELA_SANITIZED
            // A sanitizer switches core dumps off.
            const std::string limits = ReadProcess(process, "limits");
            EXPECT_NE(limits.find("Max core file size        2048 "), std::string::npos) << limits;
#endif
        }
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        std::filesystem::remove_all(system.directory / "log");
    }
}

TEST_F(ProcessPropertiesTest, ItsThreadsTellByTheirNamesWhatTheyAreFor)
{
    const std::set<std::string> known{"Vela.System.App", "SignalReader", "rsc-accept",      "rsc-server",
                                      "NmForwarder",     "NmDispatcher", "SlowCallWatcher", "ProcessesWatchd"};
    StartedProcess main = StartBehind("true");
    AwaitSetup();
    const pid_t child = StartedProcess::GetProcessId(system.directory.Read("log/Left.log"));
    for (const pid_t process : {main.GetId(), child})
    {
        const std::string tasks = "/proc/" + std::to_string(process) + "/task";
        for (const auto& task : std::filesystem::directory_iterator(tasks))
        {
            std::string name;
            std::getline(std::ifstream(task.path() / "comm"), name);
            EXPECT_TRUE(name.empty() || known.contains(name)) << name;
        }
    }
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

} // namespace
} // namespace Vela::Testing
