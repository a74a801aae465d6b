#include "HostFixture.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <memory>
#include <thread>

namespace Vela::System::Kiro::Internal
{
namespace
{

using Commons::Diagnostics::LogManager;

class ApplicationTest : public HostTest
{
};

TEST_F(ApplicationTest, SaysInOrderWhatItDoes)
{
    PlainHost host(true);
    const std::string settings = WriteSettings();
    ASSERT_EQ(host.Start({settings}), 0);
    ASSERT_TRUE(host.Dispose());

    const std::string log = ReadLog();
    std::size_t position = 0;
    for (const std::string& message :
         {std::string("VelaVersion: 2024.0.8 LTS (24.0.8.148)"),
          std::string("Starting application 'Plain' in current directory:"),
          "Load Kiro settings from: " + settings.substr(settings.find('=') + 1),
          std::string("Application 'Plain' was setup successfully."), std::string("Application 'Plain' terminates.")})
    {
        const std::size_t found = log.find(message, position);
        ASSERT_NE(found, std::string::npos) << message << " in\n" << log;
        position = found;
    }
}

TEST_F(ApplicationTest, ReadsNoSettingsWhenTheyAreSwitchedOff)
{
    PlainHost host(false);
    testing::internal::CaptureStdout();
    EXPECT_EQ(host.Start({"--settings=/nowhere/at.all"}), 0);
    EXPECT_TRUE(host.Dispose());
    testing::internal::GetCapturedStdout();
}

TEST_F(ApplicationTest, WaitsUntilAnotherThreadRequestsTheEnd)
{
    class WaitingHost : public PlainHost
    {
    public:
        using ApplicationBase::RequestProcessShutdown;
        using PlainHost::PlainHost;

    protected:
        void SetupInternal() override
        {
            onSetup();
        }
    };
    WaitingHost host(true);
    std::thread requester;
    host.onSetup = [&]
    {
        requester = std::thread([&] { host.RequestProcessShutdown(); });
    };
    EXPECT_EQ(host.Start({WriteSettings()}), 0);
    requester.join();
    EXPECT_FALSE(host.IsRestartRequested());
    EXPECT_TRUE(host.Dispose());
}

TEST_F(ApplicationTest, AnyExceptionInSetUpIsFatalAndEndsWithOne)
{
    struct Unknown
    {
    };
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[] { throw InvalidOperationException("platform {trouble}"); },
         "Exception occurs: InvalidOperationException: platform {trouble}"},
        {[] { throw std::runtime_error("standard trouble"); }, "Exception occurs: standard trouble"},
        {[] { throw Unknown(); }, "Unspecified exception occurs."},
    };
    for (const auto& [failure, message] : cases)
    {
        PlainHost host(true);
        host.onSetup = failure;
        EXPECT_EQ(host.Start({WriteSettings()}), 1);
        EXPECT_TRUE(host.Dispose());
        const std::string log = ReadLog();
        EXPECT_NE(log.find("Fatal error occurs in application 'Plain':"), std::string::npos);
        EXPECT_NE(log.find(message), std::string::npos) << log;
        EXPECT_EQ(log.find("was setup successfully"), std::string::npos);
    }
}

TEST_F(ApplicationTest, RefusesAnEmptyNameAndDisposesAllTheSame)
{
    PlainHost host(true);
    testing::internal::CaptureStdout();
    EXPECT_EQ(host.Start({WriteSettings(), "--name", ""}), 1);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("The application name must not be empty."), std::string::npos) << text;
    EXPECT_TRUE(host.Dispose());
    EXPECT_TRUE(Singleton<AppDomain>::GetInstance().GetSingletonsTypeName().empty());
}

TEST_F(ApplicationTest, WithoutLogFatalErrorsGoToStandardOutput)
{
    PlainHost host(false);
    testing::internal::CaptureStdout();
    EXPECT_EQ(host.Start({"--loglevel=Loud"}), 1);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(text.starts_with("Fatal error occurs in application 'Plain':\n")) << text;
    EXPECT_NE(text.find("Invalid string for Enum 'Vela::System::Commons::Diagnostics::LogLevel' occurs: Loud"),
              std::string::npos)
        << text;
    EXPECT_TRUE(host.Dispose());
}

TEST_F(ApplicationTest, AMissingLogConfigurationFileIsFatal)
{
    PlainHost host(true);
    testing::internal::CaptureStdout();
    const std::string file = directory.Write(
        "Log.settings", "<KiroSettingsDocument><LogSettings configFile=\"No.logconfig\"/></KiroSettingsDocument>");
    EXPECT_EQ(host.Start({"--settings=" + file}), 1);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("NotExistException"), std::string::npos) << text;
    EXPECT_NE(text.find(directory / "No.logconfig"), std::string::npos) << text;
    EXPECT_TRUE(host.Dispose());
}

TEST_F(ApplicationTest, DisposesEverythingOnceAlsoWhenAStepFails)
{
    PlainHost host(true);
    int calls = 0;
    host.onDispose = [&]
    {
        ++calls;
        throw Exception("cannot be disposed");
    };
    ASSERT_EQ(host.Start({WriteSettings()}), 0);

    EXPECT_FALSE(host.Dispose());
    EXPECT_EQ(LogManager::TryGetInstance(), nullptr);
    EXPECT_EQ(host.GetName(), "");
    EXPECT_TRUE(host.Dispose());
    EXPECT_EQ(calls, 1);
    const std::string log = ReadLog();
    EXPECT_NE(log.find("Exception occurs: Exception: cannot be disposed"), std::string::npos) << log;
}

TEST_F(ApplicationTest, CannotRestartOutsideTheMainProcess)
{
    PlainHost host(true);
    host.onSetup = [&]
    {
        EXPECT_THROW(host.RestartSystem(), Exception);
        EXPECT_FALSE(host.IsRestartRequested());
    };
    EXPECT_EQ(host.Start({WriteSettings()}), 0);
    EXPECT_TRUE(host.Dispose());
}

/// Registers types by their raw names until it goes.
class ForgottenSingletons
{
public:
    explicit ForgottenSingletons(std::vector<std::string> rawNames)
        : names(std::move(rawNames))
    {
        for (std::string& name : names)
        {
            Singleton<AppDomain>::GetInstance().AddSingleton(name.c_str(), &name);
        }
    }

    ForgottenSingletons(const ForgottenSingletons&) = delete;
    ForgottenSingletons& operator=(const ForgottenSingletons&) = delete;

    ~ForgottenSingletons()
    {
        for (const std::string& name : names)
        {
            Singleton<AppDomain>::GetInstance().RemoveSingleton(name.c_str());
        }
    }

private:
    std::vector<std::string> names;
};

TEST_F(ApplicationTest, ListsSingletonsThatNobodyDisposedWhenThereAreMoreThanNine)
{
    constexpr auto header = "The following AppDomainSingletons were not disposed yet but should:";
    const auto run = [this](std::size_t total)
    {
        PlainHost host(true);
        std::unique_ptr<ForgottenSingletons> forgotten;
        host.onSetup = [&]
        {
            std::vector<std::string> names{"15TestApplication", "N4Vela6System7ServiceE"};
            const std::size_t own = Singleton<AppDomain>::GetInstance().GetSingletonsTypeName().size();
            while (own + names.size() < total)
            {
                names.push_back("7Plugin" + std::to_string(names.size()));
            }
            forgotten = std::make_unique<ForgottenSingletons>(names);
        };
        EXPECT_EQ(host.Start({WriteSettings()}), 0);
        EXPECT_TRUE(host.Dispose());
    };

    run(9);
    EXPECT_EQ(ReadLog().find(header), std::string::npos);
    run(10);
    const std::string log = ReadLog();
    const std::size_t errors = log.find(header);
    ASSERT_NE(errors, std::string::npos) << log;
    for (const char* expected : {"+ TestApplication", "+ Vela::System::Service"})
    {
        EXPECT_LT(log.find(expected), errors);
        EXPECT_EQ(log.find(expected, errors), std::string::npos);
    }
    EXPECT_LT(log.find("+ Plugin2"), errors);
    EXPECT_NE(log.find("+ Plugin2", errors), std::string::npos);
}

} // namespace
} // namespace Vela::System::Kiro::Internal
