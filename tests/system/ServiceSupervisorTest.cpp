// What the main process tells the service supervisor that started it, over a real socket.

#include "SystemFixture.hpp"

#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <stdexcept>

namespace Vela::Testing
{
namespace
{

/// The supervisor's end: keeps what comes and who sent it.
class NotifySocket
{
public:
    /// @param name  a path, or "@" and an abstract name
    explicit NotifySocket(const std::string& name)
        : socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path, sizeof(address.sun_path) - 1);
        if (name.front() == '@')
        {
            address.sun_path[0] = '\0';
        }
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        constexpr int isOn = 1;
        if (bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
            setsockopt(socket.Get(), SOL_SOCKET, SO_PASSCRED, &isOn, sizeof(isOn)) != 0)
        {
            throw std::runtime_error("Cannot bind " + name);
        }
    }

    /// Waits for a message that holds a text and goes on behind it.
    const std::string& Await(const std::string& text)
    {
        while (true)
        {
            for (; next < messages.size(); ++next)
            {
                if (messages[next].find(text) != std::string::npos)
                {
                    return messages[next++];
                }
            }
            if (!Receive(static_cast<int>(std::chrono::milliseconds(StartedProcess::patience).count())))
            {
                throw std::runtime_error("No message '" + text + "' came: " + GetAll());
            }
        }
    }

    /// All messages that have come, one a line.
    std::string GetAll()
    {
        while (Receive(0))
        {
        }
        std::string all;
        for (const std::string& message : messages)
        {
            all += message;
        }
        return all;
    }

    [[nodiscard]] bool AreAllFrom(pid_t process) const
    {
        return std::all_of(senders.begin(), senders.end(), [process](pid_t sender) { return sender == process; });
    }

private:
    bool Receive(int milliseconds)
    {
        pollfd readable{socket.Get(), POLLIN, 0};
        if (poll(&readable, 1, milliseconds) != 1)
        {
            return false;
        }
        std::array<char, 4096> text{};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
        iovec part{text.data(), text.size()};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        const auto length = recvmsg(socket.Get(), &message, MSG_CMSG_CLOEXEC);
        const cmsghdr* header = length < 0 ? nullptr : CMSG_FIRSTHDR(&message);
        if (header == nullptr)
        {
            throw std::runtime_error("recvmsg");
        }
        ucred sender{};
        std::copy_n(CMSG_DATA(header), sizeof(sender), reinterpret_cast<unsigned char*>(&sender));
        messages.emplace_back(text.data(), static_cast<std::size_t>(length));
        senders.push_back(sender.pid);
        return true;
    }

    System::Commons::UniqueFd socket;
    std::vector<std::string> messages;
    std::vector<pid_t> senders;
    std::size_t next = 0;
};

class ServiceSupervisorTest : public SystemTest
{
protected:
    ServiceSupervisorTest()
    {
        Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}, {"InMain", "MainProcess"}});
        mkfifo(GetFile("gate").c_str(), S_IRUSR | S_IWUSR);
        mkfifo(GetFile("trigger").c_str(), S_IRUSR | S_IWUSR);
        system.environment["NOTIFY_SOCKET"] = path;
    }

    [[nodiscard]] std::string GetFile(const std::string& name) const
    {
        return system.directory / name;
    }

    /// Returns when the component that awaits the FIFO is there, and lets it pass.
    void Open(const std::string& fifo) const
    {
        close(open(GetFile(fifo).c_str(), O_WRONLY | O_CLOEXEC));
    }

    const std::string path = system.directory / "notify";
};

TEST_F(ServiceSupervisorTest, HearsOfAnOrderlyLifeFromTheMainProcessAlone)
{
    const std::string names[] = {path, "@vela-test-" + std::to_string(getpid())};
    for (const std::string& name : names)
    {
        system.environment["NOTIFY_SOCKET"] = name;
        NotifySocket supervisor(name);
        StartedProcess main = system.Start();
        supervisor.Await("STATUS=Starting the processes\n");
        supervisor.Await("STATUS=Starting the components\n");
        supervisor.Await("STATUS=Running: 2 components in 2 processes\n");
        EXPECT_EQ(supervisor.Await("READY"), "READY=1\n");
        main.AwaitLine(isUp);

        std::ifstream environment(
            "/proc/" +
            std::to_string(StartedProcess::GetProcessId(main.GetOutput().substr(main.GetOutput().find("Left[")))) +
            "/environ");
        const std::string variables{std::istreambuf_iterator<char>(environment), {}};
        EXPECT_NE(variables.find("VELA_PARENT_PID="), std::string::npos);
        EXPECT_EQ(variables.find("NOTIFY_SOCKET"), std::string::npos) << "the child inherits the supervisor";

        main.Signal(SIGTERM);
        EXPECT_EQ(supervisor.Await("STOPPING"), "STOPPING=1\n");
        supervisor.Await("STATUS=Stopping the components\n");
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_TRUE(supervisor.AreAllFrom(main.GetId()));
        EXPECT_EQ(supervisor.GetAll().find("WATCHDOG"), std::string::npos) << "nobody expects keep-alives";
    }
}

TEST_F(ServiceSupervisorTest, TakesARestartInPlaceForNoEnd)
{
    NotifySocket supervisor(path);
    system.environment["WATCHDOG_USEC"] = "60000000";
    WriteScript("InMain Start when " + GetFile("trigger") + " request Restart\n");
    StartedProcess main = system.Start();
    supervisor.Await("READY=1");
    // The next life has nothing to wait for.
    WriteScript("");
    Open("trigger");
    EXPECT_NE(supervisor.Await("RELOADING=1").find("\nMONOTONIC_USEC="), std::string::npos);
    supervisor.Await("WATCHDOG=1");
    supervisor.Await("READY=1");
    EXPECT_EQ(supervisor.GetAll().find("STOPPING=1"), std::string::npos);
    EXPECT_TRUE(supervisor.AreAllFrom(main.GetId()));
    main.Signal(SIGTERM);
    supervisor.Await("STOPPING=1");
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(ServiceSupervisorTest, HearsWhyAStartFails)
{
    NotifySocket supervisor(path);
    system.directory.Write("Default.kiro.config", "<KiroConfigurationDocument><Processes>");
    StartedProcess main = system.Start();
    supervisor.Await("Default.kiro.config");
    supervisor.Await("STOPPING=1");
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    const std::string all = supervisor.GetAll();
    EXPECT_EQ(all.find("READY"), std::string::npos) << all;
    EXPECT_NE(all.rfind("STATUS="), std::string::npos);
    EXPECT_NE(all.find("Default.kiro.config", all.rfind("STATUS=")), std::string::npos)
        << "the reason stays the status: " << all;
}

TEST_F(ServiceSupervisorTest, GetsKeepAlivesWhileNothingHangs)
{
    NotifySocket supervisor(path);
    system.environment["WATCHDOG_USEC"] = "200000";
    WriteScript("InMain Start when " + GetFile("trigger") + " request PowerDown\n" + //
                "InLeft PowerDown await " + GetFile("gate") + "\n");
    StartedProcess main = system.Start();
    supervisor.Await("READY=1");
    supervisor.Await("WATCHDOG=1");
    supervisor.Await("WATCHDOG=1");
    Open("trigger");
    const std::string hanging = supervisor.Await("STATUS=PowerDownComponent of component 'InLeft'");
    EXPECT_NE(hanging.find("in process 'Left' has not returned after"), std::string::npos) << hanging;
    main.AwaitLine("The service supervisor gets no keep-alive any more: PowerDownComponent of component 'InLeft'");
    const std::string all = supervisor.GetAll();
    EXPECT_EQ(all.find("WATCHDOG=1", all.find(hanging)), std::string::npos) << all;
    Open("gate");
    supervisor.Await("WATCHDOG=1");
    supervisor.Await("STATUS=Running: 2 components in 2 processes\n");
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(ServiceSupervisorTest, MayExpectKeepAlivesOfAnotherProcessAndMayBeGone)
{
    {
        NotifySocket supervisor(path);
        system.environment["WATCHDOG_USEC"] = "1000";
        system.environment["WATCHDOG_PID"] = "1";
        StartedProcess main = system.Start();
        supervisor.Await("READY=1");
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_EQ(supervisor.GetAll().find("WATCHDOG"), std::string::npos);
    }
    for (const std::string& name : {path, std::string("nonsense"), "@" + std::string(200, 'x')})
    {
        system.environment["NOTIFY_SOCKET"] = name;
        StartedProcess main = system.Start();
        main.AwaitLine("The service supervisor");
        main.AwaitLine(isUp);
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    }
}

} // namespace
} // namespace Vela::Testing
