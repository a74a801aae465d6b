// A process that does no more than it must to be one: it maps the libraries of the runtime and uses none of them.
//
// kiro-bench-bare idle           says "ready" and waits for the end of its input
// kiro-bench-bare main N SOCKET  starts N children, shakes hands with each over SOCKET, says "connected" and waits
// kiro-bench-bare child SOCKET   shakes hands and waits for the end of the connection
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

[[noreturn]] void Fail(const char* what)
{
    std::perror(what);
    std::exit(1);
}

sockaddr_un MakeAddress(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

void Say(const std::string& line)
{
    if (::write(STDOUT_FILENO, line.data(), line.size()) < 0)
    {
        Fail("write");
    }
}

void AwaitEnd(int descriptor)
{
    std::array<char, 64> buffer{};
    while (::read(descriptor, buffer.data(), buffer.size()) > 0)
    {
    }
}

int Listen(const std::string& path)
{
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = MakeAddress(path);
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(listener, SOMAXCONN) != 0)
    {
        Fail("listen");
    }
    return listener;
}

void RunMain(int count, std::string path)
{
    const int listener = Listen(path);
    std::string executable = "/proc/self/exe";
    std::string role = "child";
    std::array<char*, 4> arguments{executable.data(), role.data(), path.data(), nullptr};
    std::vector<pid_t> children;
    for (int i = 0; i < count; ++i)
    {
        pid_t pid = -1;
        if (::posix_spawn(&pid, executable.c_str(), nullptr, nullptr, arguments.data(), environ) != 0)
        {
            Fail("posix_spawn");
        }
        children.push_back(pid);
    }
    std::vector<int> connections;
    for (int i = 0; i < count; ++i)
    {
        const int connection = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        char greeting = 0;
        if (connection < 0 || ::read(connection, &greeting, 1) != 1 || ::write(connection, &greeting, 1) != 1)
        {
            Fail("handshake");
        }
        connections.push_back(connection);
    }
    Say("connected\n");
    AwaitEnd(STDIN_FILENO);
    for (const int connection : connections)
    {
        ::close(connection);
    }
    for (const pid_t child : children)
    {
        ::waitpid(child, nullptr, 0);
    }
}

void RunChild(const std::string& path)
{
    const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = MakeAddress(path);
    char greeting = 'h';
    if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::write(connection, &greeting, 1) != 1 || ::read(connection, &greeting, 1) != 1)
    {
        Fail("handshake");
    }
    AwaitEnd(connection);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string role = argc > 1 ? argv[1] : "";
    if (role == "idle")
    {
        Say("ready\n");
        AwaitEnd(STDIN_FILENO);
    }
    else if (role == "main" && argc == 4)
    {
        RunMain(std::atoi(argv[2]), argv[3]);
    }
    else if (role == "child" && argc == 3)
    {
        RunChild(argv[2]);
    }
    else
    {
        return 2;
    }
    return 0;
}
