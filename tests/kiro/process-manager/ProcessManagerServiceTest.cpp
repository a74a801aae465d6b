#include "TestProcess.hpp"
#include "VtableSlot.hpp"

#include <Pm/ProcessManagerServiceImpl.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/Services/ISystemManagerService.hpp>
#include <Vela/System/Kiro/Services/Internal/ISystemManagerService.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

using namespace Vela;
using namespace Vela::System::Kiro;
using namespace Vela::System::Kiro::Services::Internal;
using namespace Vela::System::Rsc;
using namespace Vela::Testing;
using Vela::System::Kiro::Internal::Pm::ProcessManager;

namespace
{

/// The names of a table's operations; an empty text where a number or the place in the interface is out of order.
template <typename Interface>
std::vector<String> GetOperationNames()
{
    std::vector<String> names;
    const auto add = [&](const auto& entry)
    {
        const std::size_t number = names.size() + 1;
        const bool isInOrder = entry.number == number && GetVtableSlot(entry.method) == number + 1;
        names.emplace_back(isInOrder ? entry.name : "");
    };
    std::apply([&](const auto&... entries) { (add(entries), ...); }, OperationTable<Interface>::operations);
    return names;
}

class Refusing : public IRscAuthorizator
{
public:
    [[nodiscard]] bool IsAllowed(const RscCaller&, const String& interfaceName, const String& name) const override
    {
        asked.push_back(interfaceName + "/" + name);
        return false;
    }

    mutable std::vector<String> asked;
};

class ProcessManagerServiceTest : public TestProcess
{
protected:
    ProcessManagerServiceTest()
    {
        Singleton<ProcessManager>::SetInstance(processManager);
    }

    ~ProcessManagerServiceTest() override
    {
        Singleton<ProcessManager>::DisposeInstance();
    }

    /// Calls an operation by its number, as a request from elsewhere does, and answers the response.
    template <typename... Args>
    std::vector<std::uint8_t> Call(IRscServiceStub& target, int operationNumber, const Args&... args)
    {
        RemotingWriter request(4096);
        (WriteRemote(request, args), ...);
        RemotingReader reader(request.GetData());
        RemotingWriter response(4096);
        RscServerContext context(reader, response);
        target.Invoke(operationNumber, context);
        std::vector<std::uint8_t> bytes;
        for (const std::byte value : response.GetData())
        {
            bytes.push_back(static_cast<std::uint8_t>(value));
        }
        return bytes;
    }

    using Text = IProcessManagerService::Text;
    ProcessManagerServiceImpl service;
    RscServiceStub<IProcessManagerService> stub{std::make_shared<ProcessManagerServiceImpl>()};
};

} // namespace

TEST(OperationTables, AreTheWireContract)
{
    EXPECT_EQ(
        GetOperationNames<IProcessManagerService>(),
        (std::vector<String>{"ShutdownProcess", "LoadLibrary", "UnloadLibrary", "CreateComponent", "DestroyComponent",
                             "InitializeComponent", "LoadComponentSettings", "SetupComponentSettings",
                             "SubscribeComponentServices", "LoadComponentConfig", "SetupComponentConfig",
                             "PublishComponentServices", "StartComponent", "StopComponent", "ResetComponentConfig",
                             "DisposeComponent", "PowerDownComponent", "SetEnvironmentVariable"}));
    EXPECT_EQ(
        GetOperationNames<ISystemManagerService>(),
        (std::vector<String>{"Shutdown", "PowerDown", "Restart", "SetEnvironmentVariable", "GetApplicationNames",
                             "ResolveDeprecatedVariableName", "GetComponentsOfType", "GetProcessNameOfComponent"}));
    EXPECT_EQ(GetOperationNames<Services::ISystemManagerService>(),
              (std::vector<String>{"Shutdown", "GetComponentInfos"}));
}

TEST_F(ProcessManagerServiceTest, WritesPropertiesAsFourTaggedValues)
{
    // Confirmation; structure of 4 fields; 32 bits, 8 bits and two booleans behind their type codes.
    auto answer = Call(stub, 4, Text("Controller"), Text("C"), Text(""));
    const std::vector<std::uint8_t> fields{9, 77, 0, 0, 0, 5, 1, 2, 0, 2, 0};
    ASSERT_GT(answer.size(), fields.size());
    EXPECT_EQ(std::vector<std::uint8_t>(answer.end() - 11, answer.end()), fields);
    RemotingWriter head(64);
    head.WriteConfirmation(false);
    head.WriteBeginStruct(4);
    EXPECT_EQ(answer.size(), head.GetData().size() + fields.size());
}

TEST_F(ProcessManagerServiceTest, AbortsUnknownOperations)
{
    for (const int number : {0, 19, -1})
    {
        const auto answer = Call(stub, number);
        RemotingWriter expected(256);
        RemotingReader nothing(std::span<const std::byte>{});
        RscServerContext(nothing, expected).AbortRequest(RscErrorCode::UnknownOperation, nullptr);
        EXPECT_EQ(answer.size(), expected.GetData().size());
        EXPECT_EQ(static_cast<std::uint32_t>(RscErrorCode::UnknownOperation), 1073741827U);
    }
}

TEST_F(ProcessManagerServiceTest, DrivesTheProcessManager)
{
    EXPECT_TRUE(service.LoadLibrary(Text("R"), Text(GetLibraryPath("Recording"))));
    EXPECT_TRUE(service.LoadLibrary(Text("R"), Text("/another/path")));
    EXPECT_EQ(service.CreateComponent(Text("RecordingController"), Text("C"), Text("R")),
              (ComponentProperties{100000, ComponentCategory::Custom, false, true}));
    service.StartComponent(Text("C"));
    EXPECT_TRUE(log.Contains("Start of component 'C' called."));
    service.LoadComponentSettings(Text("C"), Text("/none"));
    EXPECT_TRUE(log.Contains("with path '/none' called."));
    service.DestroyComponent(Text("C"));
    service.UnloadLibrary(Text("R"));
    service.UnloadLibrary(Text("R"));
    EXPECT_THROW(processManager.GetLibrary("R"), KeyNotFoundException);
    service.ShutdownProcess();
    EXPECT_EQ(host.shutdownRequests, 1);
}

TEST_F(ProcessManagerServiceTest, SetsAVariableToTheTextOfAnyValue)
{
    EXPECT_TRUE(service.SetEnvironmentVariable("VELA_TEST_VALUE", 42));
    String value;
    EXPECT_TRUE(System::Commons::Environment::GetVariableValue("VELA_TEST_VALUE", value));
    EXPECT_EQ(value, "42");
    EXPECT_FALSE(service.SetEnvironmentVariable("A=B", "x"));
}

TEST_F(ProcessManagerServiceTest, HandsOnExceptionsOfComponentsAsCopies)
{
    service.CreateComponent(Text("Plain"), Text("C"), Text(""));
    record.failing = {"Initialize"};
    EXPECT_THROW(service.InitializeComponent(Text("C")), UnspecifiedException);
}

TEST_F(ProcessManagerServiceTest, NeverReachesTheProcessManagerWithARefusedCall)
{
    service.CreateComponent(Text("Controller"), Text("C"), Text(""));
    auto& factory = ProcessManagerServiceFactory::GetInstance();
    EXPECT_FALSE(factory.IsSecurityEnabled());
    factory.SetSecurityEnabled(true);
    const Refusing refusing;
    const auto secured = factory.CreateServiceStub("", &refusing);
    factory.SetSecurityEnabled(false);
    EXPECT_THROW(Call(*secured, 13, Text("C")), RscException);
    EXPECT_EQ(refusing.asked,
              std::vector<String>{"Vela.System.Kiro.Services.Internal.IProcessManagerService/StartComponent"});
    EXPECT_TRUE(record.steps.empty());
}

TEST_F(ProcessManagerServiceTest, NeedsAProcessManager)
{
    Singleton<ProcessManager>::DisposeInstance();
    EXPECT_EQ(GetMessageOf<Exception>([&] { service.ShutdownProcess(); }),
              "Singleton instance of type 'Vela::System::Kiro::Internal::Pm::ProcessManager' was not created yet!");
}
