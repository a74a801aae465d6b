#include "Emulation.hpp"
#include "TestProcess.hpp"

#include <Pm/DiagnosticsServiceImpl.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Kiro/Services/Internal/DiagnosticsServiceProxy.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <unistd.h>

using namespace Vela;
using namespace Vela::System::Commons::Diagnostics;
using namespace Vela::System::Kiro::Services::Internal;
using namespace Vela::System::Rsc;
using namespace Vela::Testing;

namespace
{

/// Asks the service that the process manager publishes, by way of remoting.
class DiagnosticsServiceTest : public TestProcess
{
protected:
    DiagnosticsServiceTest()
    {
        System::Commons::Environment::SetVariable("VELA_PATH_RUNTIME_DIR", directory.GetPath().string());
        appDomain.SetApplicationName("Plant");
        RscManager::CreateInstance("Plant", 0, RscManagerOptions(), true);
        processManager.Setup();
        service = ServiceManager::GetService(DiagnosticsServiceProxyFactory::GetInstance(),
                                             ServiceProvider::Process("Plant"));
    }

    ~DiagnosticsServiceTest() override
    {
        service.reset();
        processManager.Dispose();
        RscManager::DisposeInstance();
        appDomain.SetApplicationName("");
    }

    TemporaryDirectory directory;
    std::shared_ptr<IDiagnosticsService> service;
};

} // namespace

TEST_F(DiagnosticsServiceTest, TellsWhoItIsAndWhatItTakes)
{
    const auto identity = service->GetIdentity();
    EXPECT_EQ(identity.name, "Plant");
    EXPECT_EQ(identity.processId, ::getpid());
    EXPECT_GT(identity.startTime, 1'500'000'000'000'000);
    EXPECT_NE(identity.executable.find("test-process-manager"), String::npos);

    const auto resources = service->GetResources();
    EXPECT_EQ(resources.state.size(), 1U);
    // The emulator answers for the process that it runs, with hardly any figure.
    if (!IsEmulated())
    {
        EXPECT_GT(resources.residentBytes, 1'000'000U);
        EXPECT_GE(resources.threads, 2U);
    }
}

TEST_F(DiagnosticsServiceTest, SetsTheLevelsThatItTells)
{
    auto& logger = Logger::Get(String("Plant.Diagnosed"));
    service->SetLogLevel("Plant", LogLevel::Error);
    EXPECT_FALSE(logger.IsEnabled(LogLevel::Warning));
    const auto levels = service->GetLogLevels();
    ASSERT_EQ(levels.size(), 2U);
    EXPECT_EQ(levels[0].category, "");
    EXPECT_EQ(levels[1].category, "Plant");
    EXPECT_EQ(levels[1].level, LogLevel::Error);

    for (const int wrong : {0, 4, 255})
    {
        EXPECT_EQ(GetMessageOf<ArgumentException>([&] { service->SetLogLevel("Plant", static_cast<LogLevel>(wrong)); }),
                  fmt::format("{} is no log level", wrong));
    }
    EXPECT_THROW(service->SetLogLevel(String(600, 'x'), LogLevel::Info), ArgumentException);
    for (int i = 0; i < 400; ++i)
    {
        try
        {
            service->SetLogLevel(fmt::format("Category{}", i), LogLevel::Info);
        }
        catch (const InvalidOperationException&)
        {
            break;
        }
    }
    EXPECT_EQ(service->GetLogLevels().size(), 256U) << "levels take a bounded memory";
    service->SetLogLevel("Plant", LogLevel::Trace);
    EXPECT_TRUE(logger.IsEnabled(LogLevel::Trace)) << "one that is there can be changed";
    service->SetLogLevel("", LogLevel::Debug);
    EXPECT_EQ(service->GetLogLevels().size(), 1U);
}

TEST_F(DiagnosticsServiceTest, GivesWhatWasLoggedLately)
{
    auto& logger = Logger::Get(String("Plant.Diagnosed"));
    const auto before = service->GetLogLines(0, 0).lastNumber;
    logger.Warning("The valve {} sticks.", 7);
    const auto page = service->GetLogLines(before, 1);
    ASSERT_EQ(page.lines.size(), 1U);
    EXPECT_EQ(page.lines[0].number, before + 1);
    EXPECT_EQ(page.lines[0].level, LogLevel::Warning);
    EXPECT_EQ(page.lines[0].category, "Plant.Diagnosed");
    EXPECT_EQ(page.lines[0].text, "The valve 7 sticks.");
    EXPECT_GE(page.lines[0].time, service->GetIdentity().startTime);
}
