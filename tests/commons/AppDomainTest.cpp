#include <Vela/AppDomain.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/EnumDictionary.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/TypeName.hpp>

#include <gtest/gtest.h>

#include <sstream>

using namespace Vela;

namespace Plant
{

struct Pump
{
    explicit Pump(int number)
        : number(number)
    {
        ++alive;
    }

    ~Pump()
    {
        --alive;
    }

    int number;
    static inline int alive = 0;
};

struct Valve
{
};

enum class Mode : std::uint8_t
{
    Off = 0,
    Auto = 2,
};

const EnumDictionary<Mode>& GetEnumDictionary(Mode)
{
    static const EnumDictionary<Mode> dictionary{{Mode::Off, "Off"}, {Mode::Auto, "Auto"}};
    return dictionary;
}

} // namespace Plant

using namespace Plant;

TEST(Singleton, IsOwnedFromCreationToDisposal)
{
    EXPECT_THROW(Singleton<Pump>::GetInstance(), Exception);
    EXPECT_EQ(Singleton<Pump>::CreateInstance(7).number, 7);
    EXPECT_EQ(Singleton<Pump>::GetInstance().number, 7);
    EXPECT_THROW(Singleton<Pump>::CreateInstance(8), InvalidOperationException);
    EXPECT_EQ(Singleton<Pump>::GetInstance().number, 7) << "a refused creation must not replace the instance";
    EXPECT_EQ(Pump::alive, 1);
    Singleton<Pump>::DisposeInstance();
    Singleton<Pump>::DisposeInstance();
    EXPECT_EQ(Pump::alive, 0);
}

TEST(Singleton, DoesNotDeleteWhatSomebodyElseOwns)
{
    Pump pump(1);
    Singleton<Pump>::SetInstance(pump);
    EXPECT_EQ(&Singleton<Pump>::GetInstance(), &pump);
    Singleton<Pump>::DisposeInstance();
    EXPECT_EQ(Pump::alive, 1);
}

TEST(AppDomainSingleton, NamesTheMissingType)
{
    try
    {
        AppDomainSingleton<Valve>::GetInstance();
        FAIL() << "no exception";
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "AppDomain Singleton instance of type 'Plant::Valve' was not created yet!");
    }
}

TEST(AppDomainSingleton, IsListedUntilItIsDisposed)
{
    AppDomain& domain = AppDomain::CreateInstance();
    EXPECT_EQ(&AppDomain::CreateInstance(), &domain);
    AppDomainSingleton<Pump>::CreateInstance(3);
    AppDomainSingleton<Valve>::CreateInstance();
    EXPECT_EQ(domain.GetSingletonsTypeName(), (std::vector<String>{"Plant::Pump", "Plant::Valve"}));
    EXPECT_THROW(AppDomainSingleton<Pump>::CreateInstance(4), InvalidOperationException);
    EXPECT_EQ(Pump::alive, 1);
    AppDomainSingleton<Valve>::DisposeInstance();
    AppDomainSingleton<Pump>::DisposeInstance();
    EXPECT_EQ(Pump::alive, 0);
    EXPECT_TRUE(domain.GetSingletonsTypeName().empty());
}

TEST(AppDomain, WarnsAtItsEndOfWhatWasNotDisposedButForgivesOne)
{
    int instance = 0;
    testing::internal::CaptureStdout();
    {
        AppDomain domain;
        domain.AddSingleton("One", &instance);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    {
        AppDomain domain;
        domain.AddSingleton("One", &instance);
        EXPECT_FALSE(domain.AddSingleton("One", &instance));
        domain.AddSingleton("Two", &instance);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "WARN: singleton of type 'One' was not disposed. Call DisposeInstance() on it, in "
              "IComponent::Dispose().\nWARN: singleton of type 'Two' was not disposed. Call DisposeInstance() on it, "
              "in IComponent::Dispose().\n");
}

TEST(TypeName, GivesReadableNamesAndLogCategories)
{
    EXPECT_EQ(GetTypeName<Plant::Mode>(), "Plant::Mode");
    EXPECT_EQ(GetLogCategory(typeid(Vela::AppDomain)), "Vela.AppDomain");
    EXPECT_THROW(DemangleTypeName("3"), Exception);
}

TEST(EnumDictionary, PrintsAndParsesByNameExactly)
{
    EXPECT_EQ(GetEnumString(Mode::Auto), "Auto");
    EXPECT_EQ(GetEnumValue<Mode>("Off"), Mode::Off);
    EXPECT_EQ(fmt::format("{} {:>5} {}", Mode::Auto, Mode::Off, static_cast<Mode>(9)), "Auto   Off 9");
    auto mode = Mode::Auto;
    EXPECT_FALSE(TryGetEnumValue("off", mode));
    EXPECT_EQ(mode, Mode::Auto);
    const auto messageOf = [](auto&& action)
    {
        try
        {
            action();
        }
        catch (const Exception& exception)
        {
            return exception.GetMessage();
        }
        return String("no exception");
    };
    EXPECT_EQ(messageOf([] { return GetEnumValue<Mode>("Manual"); }),
              "Invalid string for Enum 'Plant::Mode' occurs: Manual");
    EXPECT_EQ(messageOf([] { return GetEnumString(static_cast<Mode>(9)); }),
              "Could not find enum string of enum 'Plant::Mode' for value '9'.");
}

TEST(EnumDictionary, StreamsAndLeavesTheValueAloneOnAnUnknownWord)
{
    std::ostringstream output;
    WriteEnum(WriteEnum(output, Mode::Auto) << ' ', static_cast<Mode>(1));
    EXPECT_EQ(output.str(), "Auto 1");
    std::istringstream input("  Auto auto");
    auto mode = Mode::Off;
    ReadEnum(input, mode);
    EXPECT_TRUE(input.good());
    EXPECT_EQ(mode, Mode::Auto);
    ReadEnum(input, mode);
    EXPECT_TRUE(input.fail());
    EXPECT_EQ(mode, Mode::Auto);
}
