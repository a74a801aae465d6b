#pragma once

#include "TestServiceImpl.hpp"

#include <Vela/AppDomainSingleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <StartedProcess.hpp>
#include <TemporaryDirectory.hpp>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Vela::System::Rsc::Testing
{

/// Another process with a test service.
class Peer
{
public:
    /// Starts it, without waiting for it.
    Peer(const String& runtimeDirectory, const std::vector<std::string>& arguments);

    std::string Await(const std::string& text)
    {
        return process.AwaitLine(text);
    }

    /// Sends it a command and waits for its answer.
    void Tell(const String& command, const String& answer);
    /// Sends it a command.
    void Tell(const String& command);
    /// Lets it end in order and answers what it said about that.
    std::string End();
    void Kill();

    Vela::Testing::StartedProcess& GetProcess() noexcept
    {
        return process;
    }

private:
    struct Pipe
    {
        Pipe();
        Commons::UniqueFd readEnd;
        Commons::UniqueFd writeEnd;
    };

    Pipe input;
    Vela::Testing::StartedProcess process;
};

/// A runtime directory of its own and a remoting manager named "Tester" in it.
class RscFixture : public ::testing::Test
{
protected:
    RscFixture();
    ~RscFixture() override;

    /// Opens this process's remoting.
    void Open(bool isMainProcess = false, const RscManagerOptions& options = {});
    /// Starts a process with a test service and waits until it is ready.
    Peer& StartPeer(const std::string& name, std::vector<std::string> options = {});
    /// Publishes a test service in this process.
    void PublishOwn();

    static std::shared_ptr<ITestService> GetService(const ServiceProvider& provider);
    static std::shared_ptr<ITestService> GetService(const String& processName);

    /// A TCP port that nobody listens on.
    static std::uint16_t FindFreePort();
    /// The names of all files in the runtime directory, in byte order.
    [[nodiscard]] std::vector<std::string> ListFiles() const;
    [[nodiscard]] static std::size_t CountDescriptors();
    [[nodiscard]] static std::size_t CountThreads();
    /// Waits for something that is about to happen.
    static void Await(const std::function<bool()>& condition);

    static constexpr const char* ownName = "Tester";

    Vela::Testing::TemporaryDirectory directory;
    TestServiceImpl ownService{ownName};
    RscServiceFactory<ITestService> ownFactory{ownService};
    std::vector<std::unique_ptr<Peer>> peers;
};

} // namespace Vela::System::Rsc::Testing
