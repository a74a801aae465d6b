#include "RscFixture.hpp"

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace Vela::System::Rsc::Testing
{

using Commons::Environment;

namespace
{

std::size_t CountEntries(const char* path)
{
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator()));
}

} // namespace

Peer::Pipe::Pipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
    {
        throw std::runtime_error("pipe2");
    }
    readEnd.Reset(ends[0]);
    writeEnd.Reset(ends[1]);
}

Peer::Peer(const String& runtimeDirectory, const std::vector<std::string>& arguments)
    : process(RSC_PEER, arguments, {{Environment::runtimeDirectoryName, runtimeDirectory}}, {}, input.readEnd.Get())
{
    input.readEnd.Reset();
}

void Peer::Tell(const String& command)
{
    const String line = command + "\n";
    ASSERT_EQ(::write(input.writeEnd.Get(), line.data(), line.size()), static_cast<ssize_t>(line.size()));
}

void Peer::Tell(const String& command, const String& answer)
{
    Tell(command);
    process.AwaitLine(answer);
}

std::string Peer::End()
{
    input.writeEnd.Reset();
    std::string line = process.AwaitLine("closed");
    EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
    return line;
}

void Peer::Kill()
{
    process.Signal(SIGKILL);
    process.AwaitEnd();
}

RscFixture::RscFixture()
{
    Environment::Setup();
    Environment::SetVariable(Environment::runtimeDirectoryName, directory.GetPath().string());
    // A checker of threads starts its own thread with the first one of the process, and it stays: it must be there
    // before threads are counted.
    std::thread([] {}).join();
}

RscFixture::~RscFixture()
{
    RscManager::DisposeInstance();
    Environment::Dispose();
}

void RscFixture::Open(bool isMainProcess, const RscManagerOptions& options)
{
    RscManager::CreateInstance(ownName, 0, options, isMainProcess);
}

Peer& RscFixture::StartPeer(const std::string& name, std::vector<std::string> options)
{
    options.insert(options.begin(), name);
    peers.push_back(std::make_unique<Peer>(directory.GetPath().string(), options));
    peers.back()->Await("ready");
    return *peers.back();
}

void RscFixture::PublishOwn()
{
    ServiceManager::PublishService({}, ownFactory.GetInterfaceName(), ownFactory);
}

std::shared_ptr<ITestService> RscFixture::GetService(const ServiceProvider& provider)
{
    return ServiceManager::GetService(TestServiceProxyFactory(), provider);
}

std::shared_ptr<ITestService> RscFixture::GetService(const String& processName)
{
    return GetService(ServiceProvider::Process(processName));
}

std::uint16_t RscFixture::FindFreePort()
{
    const Commons::UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &length) != 0)
    {
        throw std::runtime_error("bind");
    }
    return ntohs(address.sin_port);
}

std::vector<std::string> RscFixture::ListFiles() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.GetPath()))
    {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::size_t RscFixture::CountDescriptors()
{
    return CountEntries("/proc/self/fd");
}

std::size_t RscFixture::CountThreads()
{
    return CountEntries("/proc/self/task");
}

void RscFixture::Await(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition())
    {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
        std::this_thread::yield();
    }
}

} // namespace Vela::System::Rsc::Testing
