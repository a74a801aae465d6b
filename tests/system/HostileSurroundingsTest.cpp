// A whole system among people who mean it no good: files that others can change, and clients that never end.

#include "SystemFixture.hpp"

#include <Vela/System/Commons/UniqueFd.hpp>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <deque>
#include <filesystem>

namespace Vela::Testing
{
namespace
{

using System::Commons::UniqueFd;

class HostileSurroundingsTest : public SystemTest
{
protected:
    static void OpenToAll(const std::string& path)
    {
        std::filesystem::permissions(path, std::filesystem::perms(0777));
    }

    /// What the system says when it refuses to start.
    std::string StartInVain()
    {
        StartedProcess main = system.Start();
        EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
        EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
        EXPECT_EQ(system.FindLeftovers(), "");
        return main.GetOutput();
    }

    [[nodiscard]] UniqueFd ConnectToMain() const
    {
        UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = system.GetRuntimeDirectory() + "/main-process";
        std::copy(path.begin(), path.end(), std::begin(address.sun_path));
        EXPECT_EQ(::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        return socket;
    }
};

TEST_F(HostileSurroundingsTest, WhatOthersCanChangeIsRefusedOrWarnedOf)
{
    const std::string security = system.directory.Write("Security.settings", "<SecuritySettingsDocument/>");
    system.WriteSettings(R"(<SecuritySettings path="Security.settings"/>)");
    OpenToAll(security);
    EXPECT_NE(StartInVain().find("Security settings file '" + security + "' can be changed by other users"),
              std::string::npos);

    system.WriteSettings(R"(<FileTrust documents="Refuse"/>)");
    OpenToAll(system.directory / "Default.kiro.config");
    EXPECT_NE(StartInVain().find("Default.kiro.config' can be changed by other users"), std::string::npos);

    system.WriteSettings("");
    StartedProcess main = system.Start();
    main.AwaitLine("Default.kiro.config' can be changed by other users");
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(HostileSurroundingsTest, ASystemUnderAFloodOfConnectionsStillEndsInOrder)
{
    Configure({"Child"}, {{"A", "MainProcess"}, {"B", "Child"}});
    // A client that says nothing makes room after a twentieth of it: not while the flood comes, however slow the
    // machine.
    system.directory.Write("Rsc.settings", "<RscSettingsDocument><Timeouts frame='10min'/></RscSettingsDocument>");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    std::deque<UniqueFd> clients;
    for (int i = 0; i < 500; ++i)
    {
        clients.push_back(ConnectToMain());
    }
    main.AwaitLine("of its connections are open, which is the limit.");
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(GetOrder("Stop"), GetOrder("Start") == "A B" ? "B A" : "A B");
    EXPECT_EQ(system.FindLeftovers(), "");
}

} // namespace
} // namespace Vela::Testing
