#include "HostApplication.hpp"
#include "HostDirectory.hpp"
#include "LogReader.hpp"
#include "NotificationRecorder.hpp"
#include "ProcessState.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>
#include <Vela/System/Kiro/Testing/ComponentHost.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace Vela::System::Kiro::Testing
{

using Commons::Diagnostics::LogLevel;

namespace
{

/// As shells report an end by a signal.
constexpr int signalExitCode = 128;

} // namespace

class ComponentHost::Data
{
public:
    explicit Data(ComponentHostOptions hostOptions)
        : options(std::move(hostOptions))
        , application(options.processName,
                      [this](int signal)
                      {
                          directory.Delete();
                          ::_exit(signalExitCode + signal);
                      })
        , log(directory.GetPath() + "/host.log", options.processName)
    {
        try
        {
            SetUp();
        }
        catch (...)
        {
            const auto failure = CaughtException::Current();
            TakeDown();
            throw Exception("The process of the test cannot be set up: {0}", failure.GetText());
        }
    }

    Data(const Data&) = delete;
    Data& operator=(const Data&) = delete;

    ~Data()
    {
        if (!TakeDown())
        {
            ADD_FAILURE() << "The process of the test was not taken down in order:" << DescribeErrors();
        }
    }

    const ComponentHostOptions options;
    const HostDirectory directory;
    const ProcessState processState;
    HostApplication application;
    const LogReader log;
    std::unique_ptr<NotificationRecorder> notifications;
    std::shared_ptr<Services::Internal::IProcessManagerService> processManager;

private:
    void SetUp()
    {
        static_cast<void>(directory.Write(
            "Rsc.settings", fmt::format(R"(<RscSettingsDocument><Timeouts connect="{}"/></RscSettingsDocument>)",
                                        options.lookupTime.count())));
        // One file that is not cut off while the test reads it.
        static_cast<void>(directory.Write(
            "Log.config", R"(<LogConfigurationDocument><Sinks><File path="host.log" maxSize="100000000"/></Sinks>)"
                          "</LogConfigurationDocument>"));
        application.SetUp(directory.Write("Host.kiro.settings", MakeSettings()));
        notifications = std::make_unique<NotificationRecorder>(options.patience);
        Nm::NotificationManagerSetup::StartDispatching();
        processManager =
            Rsc::ServiceManager::GetService(Services::Internal::ProcessManagerServiceProxyFactory::GetInstance(),
                                            Rsc::ServiceProvider::Process(options.processName));
    }

    [[nodiscard]] String MakeSettings() const
    {
        return fmt::format(R"(<KiroSettingsDocument>
  <LogSettings logLevel="{}" configFile="Log.config"/>
  <RscSettings path="Rsc.settings"/>
  <EnvironmentVariables>
    <EnvironmentVariable name="VELA_PATH_RUNTIME_DIR" value="run" override="true"/>
  </EnvironmentVariables>
{}
</KiroSettingsDocument>
)",
                           options.logLevel, options.settings);
    }

    bool TakeDown()
    {
        processManager.reset();
        notifications.reset();
        return application.Dispose();
    }

    [[nodiscard]] String DescribeErrors() const
    {
        String errors;
        for (const LogMessage& message : log.Read())
        {
            if (message.level <= LogLevel::Error)
            {
                errors += "\n    " + message.text;
            }
        }
        return errors;
    }
};

ComponentHost::ComponentHost(ComponentHostOptions hostOptions)
    : data(std::make_unique<Data>(std::move(hostOptions)))
{
}

ComponentHost::~ComponentHost() = default;

const ComponentHostOptions& ComponentHost::GetOptions() const noexcept
{
    return data->options;
}

const String& ComponentHost::GetDirectory() const noexcept
{
    return data->directory.GetPath();
}

String ComponentHost::WriteFile(const String& name, const String& text) const
{
    return data->directory.Write(name, text);
}

std::vector<LogMessage> ComponentHost::GetLog(LogLevel level) const
{
    std::vector<LogMessage> messages = data->log.Read();
    std::erase_if(messages, [level](const LogMessage& message) { return message.level > level; });
    return messages;
}

bool ComponentHost::HasLogged(const String& text) const
{
    return std::ranges::any_of(data->log.Read(),
                               [&text](const LogMessage& message) { return message.text.find(text) != String::npos; });
}

LogMessage ComponentHost::AwaitLog(const String& text) const
{
    return data->log.Await(text, data->options.patience);
}

std::vector<Nm::Notification> ComponentHost::GetNotifications(const String& pattern) const
{
    return data->notifications->GetAll(pattern);
}

Nm::Notification ComponentHost::AwaitNotification(const String& name) const
{
    return data->notifications->Await(name);
}

Services::Internal::IProcessManagerService& ComponentHost::GetProcessManager() const noexcept
{
    return *data->processManager;
}

} // namespace Vela::System::Kiro::Testing
