#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>
#include <Vela/System/Kiro/Testing/LogMessage.hpp>
#include <Vela/System/Nm/Notification.hpp>

#include <chrono>
#include <memory>
#include <vector>

namespace Vela::System::Kiro::Services::Internal
{
class IProcessManagerService;
}

namespace Vela::System::Kiro::Testing
{

/// How a test wants its process to be.
struct ComponentHostOptions
{
    /// What the components see as the name of their process.
    String processName = "TestProcess";
    /// Elements for the process's settings document, such as
    /// `<EnvironmentVariables><EnvironmentVariable name="PLANT_MODE" value="simulated"/></EnvironmentVariables>`.
    /// LogSettings and RscSettings belong to the kit.
    String settings = {};
    Commons::Diagnostics::LogLevel logLevel = Commons::Diagnostics::LogLevel::Trace;
    /// How long the lookup of a service that nobody publishes takes until it fails. There is nothing to wait for in a
    /// test, unless it publishes on another thread.
    std::chrono::milliseconds lookupTime{20};
    /// When the operations that await something give up: far longer than anything takes.
    std::chrono::seconds patience{60};
};

/// A process of a running system inside a test: the runtime's own process manager, loader, remoting, notifications,
/// environment and log, in a directory of its own. It is a main process without a system manager: the test takes the
/// system manager's place and drives the components (HostedComponent).
///
/// One at a time; when it ends, everything that it made is gone and the environment is what it was. When the process
/// cannot be taken down in order, the running test fails. The test's thread is the process's main thread, on which
/// components are called. SIGTERM and SIGINT stay blocked in the test's thread; they end the test program while there
/// is a host.
///
/// Thread-safe, but for construction and destruction.
class ComponentHost
{
public:
    /// @throws Exception with the reason when the process cannot be set up
    explicit ComponentHost(ComponentHostOptions hostOptions = {});
    ComponentHost(const ComponentHost&) = delete;
    ComponentHost& operator=(const ComponentHost&) = delete;
    ~ComponentHost();

    [[nodiscard]] const ComponentHostOptions& GetOptions() const noexcept;

    /// The host's directory, deleted with it: for settings and whatever else the components read and write.
    [[nodiscard]] const String& GetDirectory() const noexcept;
    /// Writes a file into that directory, making directories on the way.
    /// @param name  relative to the directory
    /// @return its path
    /// @throws Exception when it cannot be written
    String WriteFile(const String& name, const String& text) const;

    /// Everything that was logged at this level or a graver one since the host came up, by the runtime as well.
    [[nodiscard]] std::vector<LogMessage>
    GetLog(Commons::Diagnostics::LogLevel level = Commons::Diagnostics::LogLevel::Trace) const;
    /// Whether the text of a message has this text in it.
    [[nodiscard]] bool HasLogged(const String& text) const;
    /// Waits until a message has this text in it: for what a thread of a component logs.
    /// @throws Exception with the log when patience ends
    LogMessage AwaitLog(const String& text) const;

    /// The notifications sent so far, in their order; the last 10,000 of them.
    /// @param pattern  a name, or the beginning of names followed by "*"
    [[nodiscard]] std::vector<Nm::Notification> GetNotifications(const String& pattern = "*") const;
    /// Waits until a notification of that name has been sent, and answers the first: for what a thread of a component
    /// sends.
    /// @throws Exception with the names of those that were sent when patience ends
    [[nodiscard]] Nm::Notification AwaitNotification(const String& name) const;

    /// What drives the components: the service by which the system manager does it.
    [[nodiscard]] Services::Internal::IProcessManagerService& GetProcessManager() const noexcept;

private:
    class Data;
    const std::unique_ptr<Data> data;
};

} // namespace Vela::System::Kiro::Testing
