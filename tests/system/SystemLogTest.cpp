// What reaches the journal and the system's log, over sockets that stand where theirs do.

#include "SystemFixture.hpp"

#include <Vela/System/Commons/UniqueFd.hpp>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace Vela::Testing
{
namespace
{

/// A socket that takes datagrams as the journal does.
class LogSocket
{
public:
    explicit LogSocket(const std::string& path)
        : socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        if (bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        {
            throw std::runtime_error("Cannot bind " + path);
        }
        // All messages of a test find room, so that nobody waits for a reader.
        constexpr int room = 4 << 20;
        setsockopt(socket.Get(), SOL_SOCKET, SO_RCVBUF, &room, sizeof(room));
        constexpr timeval patience{StartedProcess::patience.count(), 0};
        setsockopt(socket.Get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    }

    /// Waits for a message that holds a text.
    [[nodiscard]] std::string Await(const std::string& text) const
    {
        std::array<char, 65536> buffer{};
        for (;;)
        {
            const auto length = recv(socket.Get(), buffer.data(), buffer.size(), 0);
            if (length < 0)
            {
                throw std::runtime_error("No message '" + text + "' came");
            }
            std::string message(buffer.data(), static_cast<std::size_t>(length));
            if (message.find(text) != std::string::npos)
            {
                return message;
            }
        }
    }

private:
    System::Commons::UniqueFd socket;
};

class SystemLogTest : public SystemTest
{
protected:
    /// Runs the executable in a mount namespace of its own, behind some shell commands.
    [[nodiscard]] StartedProcess StartBehind(const std::string& commands, const std::string& argument = "") const
    {
        const std::string inner =
            commands + " exec '" + TestSystem::GetBuiltFile("bin/Vela.System.Application") + "' " + argument;
        std::vector<std::string> arguments{"--mount", "/bin/sh", "-ec", inner};
        if (geteuid() != 0)
        {
            arguments.insert(arguments.begin(), "--map-root-user");
        }
        return StartedProcess("/usr/bin/unshare", arguments, system.environment, system.directory.GetPath().string());
    }

    const std::string socketPath = system.directory / "socket";
    const std::string journalAtItsPlace =
        "mount -t tmpfs tmpfs /run; mkdir -p /run/systemd/journal; touch /run/systemd/journal/socket; "
        "mount --bind " +
        socketPath + " /run/systemd/journal/socket; ";
    const std::string outputIsJournal = "exec 3>&1; export JOURNAL_STREAM=$(stat -L -c %d:%i /dev/fd/3); exec 3>&-; ";
};

TEST_F(SystemLogTest, TheJournalGetsProcessCategoryAndLevelAsFields)
{
    const LogSocket journal(socketPath);
    Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}});
    WriteScript("InLeft Stop throw standard the pump is gone\n");
    StartedProcess main = StartBehind(journalAtItsPlace + outputIsJournal);
    EXPECT_EQ(journal.Await("InLeft takes step Start"), "MESSAGE=InLeft takes step Start\n"
                                                        "PRIORITY=6\n"
                                                        "SYSLOG_IDENTIFIER=Left\n"
                                                        "VELA_PROCESS=Left\n"
                                                        "VELA_CATEGORY=Vela.Testing.Recorder\n"
                                                        "VELA_LEVEL=Info\n");
    std::ignore = journal.Await("was setup successfully");
    EXPECT_EQ(main.GetOutput(), "");
    main.Signal(SIGTERM);
    EXPECT_NE(journal.Await("Exception occurs while stopping component").find("\nPRIORITY=3\n"), std::string::npos);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(SystemLogTest, TheJournalGetsATextOfSeveralLinesAsOneMessage)
{
    const LogSocket journal(socketPath);
    StartedProcess main = StartBehind(journalAtItsPlace + outputIsJournal, "'--config=No\nSuch.config'");
    const std::string message = journal.Await("Such.config");
    constexpr std::string_view name = "MESSAGE\n";
    ASSERT_TRUE(message.starts_with(name)) << message;
    std::uint64_t size = 0;
    for (std::size_t index = 0; index < sizeof(size); ++index)
    {
        size |= std::uint64_t{static_cast<unsigned char>(message.at(name.size() + index))} << (8 * index);
    }
    const std::string rest = message.substr(name.size() + sizeof(size));
    ASSERT_LE(size, rest.size()) << rest;
    const auto end = static_cast<std::size_t>(size);
    EXPECT_NE(rest.substr(0, end).find("No\nSuch.config"), std::string::npos) << rest;
    EXPECT_EQ(rest.substr(end, 10), "\nPRIORITY=");
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
}

TEST_F(SystemLogTest, WithoutTheJournalsSocketItsStreamGetsTheLevels)
{
    StartedProcess main = StartBehind("mount -t tmpfs tmpfs /run; " + outputIsJournal);
    EXPECT_TRUE(main.AwaitLine(isUp).starts_with("<6>20"));
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();

    system.directory.Write("Default.kiro.config", "<KiroConfigurationDocument>");
    StartedProcess failing = StartBehind("mount -t tmpfs tmpfs /run; " + outputIsJournal);
    EXPECT_EQ(failing.AwaitEnd(), 1);
    std::istringstream lines(failing.GetOutput());
    int fatalLines = 0;
    for (std::string line; std::getline(lines, line);)
    {
        EXPECT_TRUE(line.starts_with("<")) << line;
        fatalLines += line.starts_with("<2>") ? 1 : 0;
    }
    EXPECT_GE(fatalLines, 2) << failing.GetOutput();
}

TEST_F(SystemLogTest, AnOutputThatIsNotTheJournalsStreamStaysAsItIs)
{
    StartedProcess main = StartBehind("export JOURNAL_STREAM=1:1;");
    EXPECT_TRUE(main.AwaitLine(isUp).starts_with("20"));
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(SystemLogTest, TheSystemsLogGetsWhatItsSinkAllows)
{
    const LogSocket log(socketPath);
    system.WriteSettings("<LogSettings configFile='log.config'/>");
    system.directory.Write("log.config", "<LogConfigurationDocument><Sinks><Console/><Syslog level='Info'/></Sinks>"
                                         "</LogConfigurationDocument>");
    StartedProcess main = StartBehind("mkdir dev; mount -t tmpfs tmpfs dev; touch dev/null dev/urandom dev/log; "
                                      "mount --bind /dev/null dev/null; mount --bind /dev/urandom dev/urandom; "
                                      "mount --bind " +
                                      socketPath + " dev/log; mount --rbind dev /dev;");
    const std::string message = log.Await("was setup successfully");
    EXPECT_TRUE(message.starts_with("<14>")) << message;
    const std::string process = "MainProcess[" + std::to_string(main.GetId()) + "] ";
    EXPECT_NE(message.find(process + "Vela.System.Kiro.Internal.ApplicationBase: Application 'MainProcess' was"),
              std::string::npos)
        << message;
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

} // namespace
} // namespace Vela::Testing
