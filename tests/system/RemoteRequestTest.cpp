// What other programs of the platform request by remote call.

#include "SystemFixture.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <IRecordingService.hpp>

#include <thread>

namespace Vela::Testing
{
namespace
{

using System::Commons::Environment;
using System::Kiro::Services::Internal::ISystemManagerService;
using System::Kiro::Services::Internal::SystemManagerServiceProxyFactory;
using System::Rsc::RscManager;
using System::Rsc::ServiceManager;
using System::Rsc::ServiceProvider;

/// This test is a program of its own in the system under test.
class RemoteRequestTest : public SystemTest
{
protected:
    RemoteRequestTest()
    {
        Environment::Setup();
        Environment::SetVariable(Environment::runtimeDirectoryName, system.GetRuntimeDirectory());
        RscManager::CreateInstance("Operator", 0, String(), false);
        Configure({"MainProcess", "Left"}, {{"InMain", "MainProcess"}, {"InLeft", "Left"}});
    }

    ~RemoteRequestTest() override
    {
        RscManager::DisposeInstance();
        Environment::Dispose();
    }

    static std::shared_ptr<ISystemManagerService> GetSystemManager()
    {
        return ServiceManager::GetService(SystemManagerServiceProxyFactory::GetInstance());
    }
};

TEST_F(RemoteRequestTest, RestartsInPlaceWithTheSameProcessAndEndsOnShutdown)
{
    StartedProcess main = system.Start();
    const std::string firstLine = main.AwaitLine(isUp);
    GetSystemManager()->Restart();
    const std::string secondLine = main.AwaitLine(isUp);
    EXPECT_EQ(StartedProcess::GetProcessId(firstLine), StartedProcess::GetProcessId(secondLine));
    EXPECT_EQ(GetSteps("InLeft"), "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices "
                                  "LoadConfig SetupConfig Start Stop ResetConfig Dispose Destroy "
                                  "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices "
                                  "LoadConfig SetupConfig Start");

    GetSystemManager()->Shutdown();
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(GetOrder("Destroy"), "InMain InLeft InMain InLeft");
}

TEST_F(RemoteRequestTest, PowerDownRunsItsPhaseAlone)
{
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    GetSystemManager()->PowerDown();
    EXPECT_NE(GetOrder("PowerDown"), "");
    EXPECT_EQ(GetOrder("Stop"), "");
    GetSystemManager()->Shutdown();
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

TEST_F(RemoteRequestTest, ACallThatNeverReturnsDoesNotKeepItsProcess)
{
    WriteScript("InMain PublishServices publish\nInLeft PublishServices publish\n");
    // The code that runs must stay where it is: the process cannot be taken down as it should.
    for (const auto& [component, code] : {std::pair("InMain", 1), {"InLeft", 0}})
    {
        // Joined last: the end of the system ends the call.
        std::jthread caller;
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        caller = std::jthread(
            [component = component]
            {
                const RecordingServiceProxyFactory factory;
                const auto service = ServiceManager::GetService(factory, ServiceProvider::Component(component));
                EXPECT_THROW(service->Act(IRecordingService::Text("hang")), Exception);
            });
        main.AwaitLine(std::string(component) + " takes step Call");
        main.Signal(SIGTERM);
        EXPECT_EQ(main.AwaitEnd(), code) << main.GetOutput();
        caller.join();
        const std::string record = system.TakeCrashRecord();
        EXPECT_EQ(record == "no record", code == 0) << record;
        EXPECT_EQ(record.starts_with("reason: not taken down in order\n") &&
                      record.find("\nerror: A remote call is still running in this process.\n") != std::string::npos,
                  code == 1)
            << record;
        EXPECT_EQ(system.FindLeftovers(), "Operator.socket ");
        EXPECT_TRUE(main.HasOutput("Warning")) << main.GetOutput();
    }
}

} // namespace
} // namespace Vela::Testing
