#include "IRecordingService.hpp"
#include "MappedFiles.hpp"
#include "TestProcess.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Pm;
using namespace Vela::System::Kiro::Services::Internal;
using namespace Vela::System::Rsc;
using namespace Vela::Testing;
using Vela::System::Commons::Environment;

namespace
{

/// A process with remoting and a recorder "C" whose service is published. Its library is a file of its own, because a
/// test may leave it mapped.
class ComponentServices : public TestProcess
{
protected:
    ComponentServices()
    {
        Environment::SetVariable(Environment::runtimeDirectoryName, directory / "run");
        mkdir((directory / "run").c_str(), S_IRWXU);
        Environment::SetVariable("RECORDING_SCRIPT", directory.Write("script", "C PublishServices publish\n"));
        Environment::SetVariable("RECORDING_TRACE", directory / "trace");
        mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR);
    }

    ~ComponentServices() override
    {
        RscManager::DisposeInstance();
        Singleton<ProcessManager>::DisposeInstance();
    }

    void SetUpWith(std::chrono::milliseconds closeTimeout)
    {
        RscManagerOptions options;
        options.closeTimeout = closeTimeout;
        RscManager::CreateInstance("Test", 0, options, true);
        Singleton<ProcessManager>::SetInstance(processManager);
        processManager.Setup();

        std::filesystem::copy_file(GetLibraryPath("Recording"), path);
        processManager.LoadLibrary("R", path);
        processManager.CreateComponent("Recorder", "C", "R");
        processManager.PublishComponentServices("C");
    }

    std::shared_ptr<IRecordingService> GetService()
    {
        return ServiceManager::GetService(RecordingServiceProxyFactory(), ServiceProvider::Component("C"));
    }

    /// Begins a call that stays inside the component until the descriptor is closed.
    std::thread BeginCall(const std::shared_ptr<IRecordingService>& service, int& descriptor)
    {
        std::thread caller([this, service] { service->Act("await " + fifo); });
        descriptor = open(fifo.c_str(), O_WRONLY | O_CLOEXEC);
        return caller;
    }

    [[nodiscard]] String GetTrace() const
    {
        return directory.Read("trace");
    }

    TemporaryDirectory directory;
    const String path = directory / "libServing.so";
    const String fifo = directory / "fifo";
};

} // namespace

TEST_F(ComponentServices, EndWithTheirComponent)
{
    SetUpWith(std::chrono::seconds(60));
    const auto service = GetService();
    EXPECT_EQ(service->GetName().ToString(), "C");
    processManager.DestroyComponent("C");
    processManager.UnloadLibrary("R");
    EXPECT_FALSE(IsMapped(path));
    EXPECT_THROW(service->GetName(), RscException);
    EXPECT_EQ(ServiceManager::TryGetService(RecordingServiceProxyFactory(), ServiceProvider::Component("C"),
                                            std::chrono::milliseconds(0)),
              nullptr);
}

TEST_F(ComponentServices, EndWithAComponentThatNobodyDestroyed)
{
    SetUpWith(std::chrono::seconds(60));
    const auto service = GetService();
    processManager.Dispose();
    EXPECT_FALSE(IsMapped(path));
    EXPECT_THROW(service->GetName(), RscException);
}

TEST_F(ComponentServices, LetCallsInProgressEndBeforeTheComponentGoes)
{
    SetUpWith(std::chrono::seconds(60));
    const auto service = GetService();
    int descriptor = -1;
    std::thread caller = BeginCall(service, descriptor);
    std::thread destroyer([this] { processManager.DestroyComponent("C"); });
    // Refused as soon as the service is being withdrawn.
    const auto isRefused = [&service]
    {
        try
        {
            service->GetName();
            return false;
        }
        catch (const RscException&)
        {
            return true;
        }
    };
    while (!isRefused())
    {
        std::this_thread::yield();
    }
    EXPECT_EQ(GetTrace().find("Destroy"), String::npos);
    close(descriptor);
    caller.join();
    destroyer.join();
    EXPECT_NE(GetTrace().find("CallEnd\nTest C Destroy\n"), String::npos) << GetTrace();
    processManager.UnloadLibrary("R");
    EXPECT_FALSE(IsMapped(path));
}

TEST_F(ComponentServices, KeepComponentAndLibraryBelowACallThatDoesNotEnd)
{
    SetUpWith(std::chrono::milliseconds(20));
    int descriptor = -1;
    std::thread caller = BeginCall(GetService(), descriptor);
    processManager.DestroyComponent("C");
    processManager.UnloadLibrary("R");
    EXPECT_TRUE(log.Contains("Calls of services of component 'C' have not ended"));
    EXPECT_TRUE(log.Contains("Shared Library 'R' is still in use and stays mapped."));
    EXPECT_TRUE(IsMapped(path));
    close(descriptor);
    caller.join();
    EXPECT_TRUE(GetTrace().ends_with("CallEnd\n")) << GetTrace();
}

TEST_F(ComponentServices, KeepComponentAndLibraryBelowACallThatOutlivesRemoting)
{
    SetUpWith(std::chrono::milliseconds(20));
    int descriptor = -1;
    std::thread caller = BeginCall(GetService(), descriptor);
    EXPECT_FALSE(RscManager::DisposeInstance());
    processManager.Dispose();
    EXPECT_TRUE(IsMapped(path));
    close(descriptor);
    caller.join();
    EXPECT_TRUE(GetTrace().ends_with("CallEnd\n")) << GetTrace();
}

TEST_F(ComponentServices, StandBesideTheProcessManagersOwn)
{
    SetUpWith(std::chrono::seconds(60));
    const auto service =
        ServiceManager::GetService(ProcessManagerServiceProxyFactory::GetInstance(), ServiceProvider::Process("Test"));
    service->InitializeComponent("C");
    EXPECT_NE(GetTrace().find("Test C Initialize\n"), String::npos);
    EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { service->StartComponent("X"); }),
              "Component 'X' does not exist");
    service->ShutdownProcess();
    EXPECT_EQ(host.shutdownRequests, 1);
    processManager.Dispose();
    EXPECT_THROW(service->ShutdownProcess(), RscException);
}
