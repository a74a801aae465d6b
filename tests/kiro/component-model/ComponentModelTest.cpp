#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/ComponentFactory.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/LibraryBase.hpp>

#include <gtest/gtest.h>

#include <sstream>

using namespace Vela;
using namespace Vela::System::Kiro;

namespace
{

class Application : public IApplication
{
public:
    [[nodiscard]] String GetName() const override
    {
        return "Test";
    }
};

class Library : public LibraryBase
{
public:
    explicit Library(AppDomain& appDomain)
        : LibraryBase(appDomain, BasicVersion(1, 2, 3, 4))
    {
    }
};

class ComponentModel : public testing::Test
{
protected:
    [[nodiscard]] ComponentBase Make(ComponentCategory category, std::uint32_t startOrder)
    {
        return {application, library, "Pump", category, startOrder, false};
    }

    Application application;
    Library library{AppDomain::CreateInstance()};
};

template <int Number>
std::shared_ptr<IComponent> Create(IApplication& application, const String& componentName)
{
    static Library library(AppDomain::CreateInstance());
    return std::make_shared<ComponentBase>(application, library, componentName + std::to_string(Number),
                                           ComponentCategory::Custom, 0, false);
}

} // namespace

TEST_F(ComponentModel, LowersTheTopmostStartOrdersOfCustomComponentsOnly)
{
    EXPECT_EQ(Make(ComponentCategory::Custom, 4294967295U).GetStartOrder(), 4294966295U);
    EXPECT_EQ(Make(ComponentCategory::Custom, 4294966295U).GetStartOrder(), 4294965295U);
    EXPECT_EQ(Make(ComponentCategory::Custom, 4294966294U).GetStartOrder(), 4294966294U);
    for (const auto category : {ComponentCategory::None, ComponentCategory::System, ComponentCategory::Service})
    {
        EXPECT_EQ(Make(category, 4294967295U).GetStartOrder(), 4294967295U);
    }
}

TEST_F(ComponentModel, TellsSystemComponentsByTheirCategory)
{
    EXPECT_TRUE(Make(ComponentCategory::System, 1).IsSystemComponent());
    EXPECT_TRUE(Make(ComponentCategory::Service, 1).IsSystemComponent());
    EXPECT_FALSE(Make(ComponentCategory::Custom, 1).IsSystemComponent());
    EXPECT_FALSE(Make(ComponentCategory::None, 1).IsSystemComponent());
}

TEST_F(ComponentModel, GivesAComponentTheVersionOfItsLibrary)
{
    EXPECT_EQ(Make(ComponentCategory::Custom, 1).GetVersion(), BasicVersion(1, 2, 3, 4));
}

TEST_F(ComponentModel, KeepsTheFirstFactoryMethodOfAType)
{
    library.AddComponentFactoryMethod("Pump", &Create<1>);
    library.AddComponentFactoryMethod("Pump", &Create<2>);
    IComponentFactory& factory = library.GetComponentFactory();
    EXPECT_TRUE(factory.ContainsComponentType("Pump"));
    EXPECT_FALSE(factory.ContainsComponentType("pump"));
    EXPECT_EQ(factory.CreateComponent(application, "Pump", "P")->GetName(), "P1");
}

TEST_F(ComponentModel, RefusesATypeThatIsNotRegistered)
{
    try
    {
        library.GetComponentFactory().CreateComponent(application, "Valve", "V1");
        FAIL();
    }
    catch (const InvalidOperationException& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "CreateComponent: Can't create component 'V1' of type 'Valve', because no "
                                          "registered factory method for this type exists.");
    }
}

TEST_F(ComponentModel, KeepsTheFirstApplicationDomain)
{
    AppDomain other;
    const Library second(other);
    EXPECT_NE(Singleton<AppDomain>::TryGetInstance(), &other);
    EXPECT_EQ(Singleton<AppDomain>::TryGetInstance(), &AppDomain::CreateInstance());
}

TEST(ComponentCategory, ReadsExactNamesOnly)
{
    auto category = ComponentCategory::Custom;
    std::istringstream(" Service rest") >> category;
    EXPECT_EQ(category, ComponentCategory::Service);
    for (const char* text : {"system", "Systems", "1", ""})
    {
        std::istringstream stream(text);
        stream >> category;
        EXPECT_TRUE(stream.fail()) << text;
        EXPECT_EQ(category, ComponentCategory::Service);
    }
}

TEST(ComponentCategory, WritesNamesAndNumbersWithoutOne)
{
    std::ostringstream stream;
    stream << ComponentCategory::None << ' ' << ComponentCategory::Custom << ' ' << static_cast<ComponentCategory>(9);
    EXPECT_EQ(stream.str(), "None Custom 9");
    try
    {
        GetEnumString(static_cast<ComponentCategory>(9));
        FAIL();
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(),
                  "Could not find enum string of enum 'Vela::System::Kiro::ComponentCategory' for value '9'.");
    }
}
