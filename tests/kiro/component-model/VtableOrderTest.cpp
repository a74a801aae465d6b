#include "VtableSlot.hpp"

#include <Vela/System/Kiro/IComponent.hpp>
#include <Vela/System/Kiro/IComponentFactory.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::System::Kiro;
using Vela::Testing::AreSlotsInOrder;

namespace
{

/// What a library built elsewhere does: it calls a slot, whatever the header says today.
void CallSlot(void* object, std::size_t slot)
{
    using Operation = void (*)(void*);
    (*static_cast<Operation**>(object))[slot](object);
}

class Controller : public IControllerComponent
{
public:
    void Start() override
    {
        calls += "Start ";
    }

    void Stop() override
    {
        calls += "Stop ";
    }

    ~Controller() override
    {
        trace += calls + "Destroyed";
    }

    String calls;
    static inline String trace;
};

} // namespace

TEST(VtableOrder, OfComponentsIsTheContract)
{
    EXPECT_TRUE(AreSlotsInOrder(&IComponent::GetApplication, &IComponent::GetLibrary, &IComponent::GetName,
                                &IComponent::GetVersion, &IComponent::GetCategory, &IComponent::GetStartOrder,
                                &IComponent::IsSingleton, &IComponent::IsSystemComponent, &IComponent::Initialize,
                                &IComponent::SubscribeServices, &IComponent::LoadSettings, &IComponent::SetupSettings,
                                &IComponent::PublishServices, &IComponent::LoadConfig, &IComponent::SetupConfig,
                                &IComponent::ResetConfig, &IComponent::Dispose, &IComponent::PowerDown));
}

TEST(VtableOrder, OfControllersLibrariesAndFactoriesIsTheContract)
{
    EXPECT_TRUE(AreSlotsInOrder(&IControllerComponent::Start, &IControllerComponent::Stop));
    EXPECT_TRUE(AreSlotsInOrder(&ILibrary::GetComponentFactory, &ILibrary::GetVersion));
    EXPECT_TRUE(AreSlotsInOrder(&IComponentFactory::ContainsComponentType, &IComponentFactory::CreateComponent));
}

TEST(VtableOrder, IsWhatRawCallsReach)
{
    auto* controller = new Controller;
    CallSlot(static_cast<IControllerComponent*>(controller), 3);
    CallSlot(static_cast<IControllerComponent*>(controller), 2);
    // The second slot is the destructor that also frees the object.
    CallSlot(static_cast<IControllerComponent*>(controller), 1);
    EXPECT_EQ(Controller::trace, "Stop Start Destroyed");
}
