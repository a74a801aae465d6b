#include <Vela/System/Kiro/Testing/HostedComponent.hpp>

#include <gtest/gtest.h>

using namespace Vela::System::Kiro::Testing;

TEST(HelloTest, SaysHelloWhenItIsStarted)
{
    ComponentHost host;
    HostedComponent hello(host, {.type = "Hello", .name = "Greeter", .settingsPath = "Hello.settings"});
    hello.BringUpTo(LifecycleStep::SetupConfig);
    EXPECT_TRUE(host.HasLogged("'Greeter' has its settings in 'Hello.settings'."));
    EXPECT_FALSE(host.HasLogged("says hello"));

    hello.BringUp();
    host.AwaitLog("'Greeter' says hello from process 'TestProcess'.");
}
