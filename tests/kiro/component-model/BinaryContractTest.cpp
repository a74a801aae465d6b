#include "VtableSlot.hpp"

#include <Vela/System/Kiro/BinaryContract.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/IComponent.hpp>
#include <Vela/System/Kiro/IComponentFactory.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Kiro/IEnvironmentVariablesProvider.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>
#include <Vela/System/Rsc/IRscServiceStub.hpp>
#include <Vela/System/Rsc/RscClient.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>
#include <Vela/VelaVersion.hpp>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <map>
#include <typeinfo>

using namespace Vela;
using namespace Vela::System::Kiro;
using namespace Vela::System::Rsc;
using Vela::Testing::GetVtableSlot;

namespace
{

using OperationsBySlot = std::map<std::size_t, String>;

/// The operations of an interface as the contract lists them; behind the two destructors.
OperationsBySlot GetListed(std::string_view interfaceName)
{
    OperationsBySlot operations;
    for (const auto& interface : BinaryContract::interfaces)
    {
        for (auto rest = interface.name == interfaceName ? interface.operations : std::string_view(); !rest.empty();)
        {
            const auto name = rest.substr(0, rest.find(' '));
            operations[operations.size() + 2] = name;
            rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        }
    }
    return operations;
}

/// How many slots the table of a class has in the library that defines it.
std::size_t CountSlots(const std::type_info& type)
{
    void* table = ::dlsym(RTLD_DEFAULT, ("_ZTV" + String(type.name())).c_str());
    Dl_info info{};
    void* symbol = nullptr;
    if (table == nullptr || ::dladdr1(table, &info, &symbol, RTLD_DL_SYMENT) == 0 || symbol == nullptr)
    {
        return 0;
    }
    // In front of the first slot stand the offset to the whole object and the type information.
    return static_cast<const ElfW(Sym)*>(symbol)->st_size / sizeof(void*) - 2;
}

template <typename Interface>
void ExpectListed(const char* name, const OperationsBySlot& operations)
{
    EXPECT_EQ(GetListed(name), operations) << name;
    EXPECT_EQ(CountSlots(typeid(Interface)), operations.size() + 2) << name << " has operations that are not listed.";
}

} // namespace

/// An operation with its slot.
#define SLOT(operation)                                                                                                \
    {                                                                                                                  \
        GetVtableSlot(&Interface::operation), #operation                                                               \
    }

TEST(BinaryContract, ListsTheVirtualFunctionTablesAsTheyAre)
{
    {
        using Interface = IApplication;
        ExpectListed<Interface>("IApplication", {SLOT(GetName)});
    }
    {
        using Interface = IComponent;
        ExpectListed<Interface>(
            "IComponent", {SLOT(GetApplication), SLOT(GetLibrary), SLOT(GetName), SLOT(GetVersion), SLOT(GetCategory),
                           SLOT(GetStartOrder), SLOT(IsSingleton), SLOT(IsSystemComponent), SLOT(Initialize),
                           SLOT(SubscribeServices), SLOT(LoadSettings), SLOT(SetupSettings), SLOT(PublishServices),
                           SLOT(LoadConfig), SLOT(SetupConfig), SLOT(ResetConfig), SLOT(Dispose), SLOT(PowerDown)});
    }
    {
        using Interface = IComponentFactory;
        ExpectListed<Interface>("IComponentFactory", {SLOT(ContainsComponentType), SLOT(CreateComponent)});
    }
    {
        using Interface = IControllerComponent;
        ExpectListed<Interface>("IControllerComponent", {SLOT(Start), SLOT(Stop)});
    }
    {
        using Interface = IEnvironmentVariablesProvider;
        ExpectListed<Interface>("IEnvironmentVariablesProvider",
                                {SLOT(GetEnvironmentVariables), SLOT(OnEnvironmentVariablesTakenOver)});
    }
    {
        using Interface = ILibrary;
        ExpectListed<Interface>("ILibrary", {SLOT(GetComponentFactory), SLOT(GetVersion)});
    }
    {
        using Interface = IRscServiceFactory;
        ExpectListed<Interface>("IRscServiceFactory", {SLOT(GetName), SLOT(GetInterfaceName), SLOT(IsSecurityEnabled),
                                                       SLOT(SetSecurityEnabled), SLOT(CreateServiceStub)});
    }
    {
        using Interface = IRscServiceLease;
        ExpectListed<Interface>("IRscServiceLease", {SLOT(GetService)});
    }
    {
        using Interface = IRscServiceProxy;
        ExpectListed<Interface>("IRscServiceProxy", {SLOT(GetProcessName)});
    }
    {
        using Interface = IRscServiceStub;
        ExpectListed<Interface>("IRscServiceStub", {SLOT(Invoke), SLOT(Authorize), SLOT(GetOperationName),
                                                    SLOT(IsSecure), SLOT(GetService)});
    }
    {
        using Interface = IRscTransaction;
        ExpectListed<Interface>("IRscTransaction",
                                {SLOT(BeginServiceInvocationRequest), SLOT(EndServiceInvocationRequest),
                                 SLOT(BeginServiceInvocationResponse), SLOT(EndServiceInvocationResponse),
                                 SLOT(MakeMalformedResponse)});
    }
    {
        using Interface = RscClient;
        ExpectListed<Interface>("RscClient", {SLOT(GetProcessName), SLOT(TryLease), SLOT(BeginTransaction)});
    }
    EXPECT_EQ(BinaryContract::interfaces.size(), 12U) << "an interface is listed that is not checked here";
}

TEST(BinaryContract, NamesTheVersionOfThisRuntime)
{
    const BasicVersion& version = VelaVersion::GetCurrent();
    EXPECT_EQ(BinaryContract::sdkVersion,
              fmt::format("{}.{}.{}.{}", version.GetMajorVersion(), version.GetMinorVersion(),
                          version.GetPatchVersion(), version.GetBuildVersion()));
}
