// What other programs of the platform request by remote call.

#include "SystemFixture.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

namespace Vela::Testing
{
namespace
{

using System::Commons::Environment;
using System::Kiro::Services::Internal::ISystemManagerService;
using System::Kiro::Services::Internal::SystemManagerServiceProxyFactory;
using System::Rsc::RscManager;
using System::Rsc::ServiceManager;

/// This test is a program of its own in the system under test.
class RestartTest : public SystemTest
{
protected:
    RestartTest()
    {
        Environment::Setup();
        Environment::SetVariable(Environment::runtimeDirectoryName, system.GetRuntimeDirectory());
        RscManager::CreateInstance("Operator", 0, String(), false);
        Configure({"MainProcess", "Left"}, {{"InMain", "MainProcess"}, {"InLeft", "Left"}});
    }

    ~RestartTest() override
    {
        RscManager::DisposeInstance();
        Environment::Dispose();
    }

    static std::shared_ptr<ISystemManagerService> GetSystemManager()
    {
        return ServiceManager::GetService(SystemManagerServiceProxyFactory::GetInstance());
    }
};

TEST_F(RestartTest, RestartsInPlaceWithTheSameProcessAndEndsOnShutdown)
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

TEST_F(RestartTest, PowerDownRunsItsPhaseAlone)
{
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    GetSystemManager()->PowerDown();
    EXPECT_NE(GetOrder("PowerDown"), "");
    EXPECT_EQ(GetOrder("Stop"), "");
    GetSystemManager()->Shutdown();
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
}

} // namespace
} // namespace Vela::Testing
