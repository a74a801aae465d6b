#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/Internal/ApplicationSetupKind.hpp>
#include <Vela/System/Kiro/Internal/ProcessKind.hpp>

#include <cstdint>
#include <functional>
#include <memory>

namespace boost::program_options
{
class options_description;
class variables_map;
} // namespace boost::program_options

namespace Vela::System::Kiro::Internal
{

struct ApplicationData;

/// One process of a system, from its command line to its end.
///
/// An executable creates one object of a derived class, calls Main and, when Main has returned, Dispose:
/// @code
/// MainApplicationBase application("MainProcess", true, false, true);
/// const int result = application.Main(argc, argv, LogLevel::None);
/// application.Dispose();
/// @endcode
/// Main reads the command line and the settings document, sets up environment, logging and signals, lets SetupInternal
/// bring up the basic components, and blocks until somebody requests the end. All of that happens on the caller's
/// thread; the requests (RestartSystem, a signal, a remote call) may come from any thread.
class VELA_KIRO_API ApplicationBase : public IApplication, private Commons::Diagnostics::Loggable<ApplicationBase>
{
public:
    static constexpr const char* defaultSettings = "Default.kiro.settings";
    static constexpr const char* defaultConfig = "Default.kiro.config";
    static constexpr const char* logFileExtension = ".log";
    static constexpr std::int32_t defaultCore = 0;
    /// How long a console host waits between two looks at the shutdown request, in milliseconds.
    static constexpr int shutdownPollingTime = 10;

    static constexpr const char* helpOptionName = "help";
    static constexpr const char* helpOptionDescription = "prints this help";
    static constexpr const char* applicationOptionName = "name";
    static constexpr const char* applicationOptionDescription = "application name";
    static constexpr const char* localTcpPortOptionName = "localTcpPort";
    static constexpr const char* localTcpPortOptionDescription =
        "Local TCP port of this process used for interprocess communication.";
    static constexpr const char* settingsOptionName = "settings";
    static constexpr const char* settingsOptionDescription = "path to settings file";
    static constexpr const char* configOptionName = "config";
    static constexpr const char* configOptionDescription = "path to configuration file";
    static constexpr const char* coreOptionName = "core";
    static constexpr const char* coreOptionDescription = "core to bind the process to";
    static constexpr const char* debugBreakOptionName = "debugBreak";
    static constexpr const char* debugBreakOptionDescription =
        "Breaks the application during startup to attach debugger.";
    static constexpr const char* gatewayPortOptionName = "gatewayport";
    static constexpr const char* gatewayPortOptionDescription = "Tcp port of Rsc gateway";
    static constexpr const char* logLevelOptionName = "loglevel";
    static constexpr const char* logLevelOptionDescription = "log level (Off, Error, Warning, Info, Debug, Trace)";
    static constexpr const char* singleProcessOptionName = "singleProcess";
    static constexpr const char* singleProcessOptionDescription =
        "ignore the process configuration and runs all components in one process";
    static constexpr const char* velaVersionOptionName = "version";
    static constexpr const char* velaVersionOptionDescription = "returns the version of the VELA platform";

    /// @param name  the process's name unless the command line gives another
    /// @param loadSettings  whether a settings document is read at all
    ApplicationBase(const String& name, bool loadSettings);
    ApplicationBase(const ApplicationBase&) = delete;
    ApplicationBase& operator=(const ApplicationBase&) = delete;
    /// Dispose must have been called when Main was.
    ~ApplicationBase() override;

    /// A copy of the process's name; empty once disposed.
    [[nodiscard]] String GetName() const override;

    /// The whole life of the process up to the request that ends it. SIGTERM and SIGINT are blocked from here on.
    /// @param logLevel  None: information; the log settings and the command line replace it
    /// @return the exit code: 0 after help, version and an orderly run, 1 after an exception
    /// @throws boost::program_options::error for a wrong command line
    int Main(int argc, char** argv, Commons::Diagnostics::LogLevel logLevel);

    /// Tears down whatever was set up, in reverse order. Every step is tried, also when one before it failed.
    /// A second call does nothing.
    /// @return false when a step failed; the first failure is reported as a fatal error
    bool Dispose();

    /// Ends the process so that its executable starts the whole system again. From any thread.
    /// @throws Exception when there are no security notifications, that is outside the main process
    void RestartSystem();

    /// Whether the system is to be started again. Ask after Main and before Dispose: stopping the processes withdraws
    /// the request.
    [[nodiscard]] bool IsRestartRequested() const noexcept;

    /// Whether the end of the system was requested behind its restart, if there was any. Ask after Dispose: a signal
    /// may come while the system is taken down.
    [[nodiscard]] bool IsRestartWithdrawn() const noexcept;

    /// Blocks until the end is requested.
    void WaitForShutdown();

    /// Reports a fatal error to the log, or to standard output when there is none.
    void LogFatal(const String& message);

protected:
    /// Brings up the basic components of the process, usually by SetupBasicComponents.
    virtual void SetupInternal() = 0;
    /// As SetupRemoting(true).
    virtual void SetupRemoting();
    /// As SetupNotificationManager(true).
    virtual void SetupNotificationManager() const;
    virtual void SetupProcessManager();
    virtual void SetupSystemManager(bool isMainProcess);
    /// What the process does between set-up and end; the result is the exit code.
    virtual std::int32_t Run();
    /// Tears down what SetupInternal brought up. Every step is tried; then the first failure is thrown.
    virtual void DisposeInternal();
    /// For options that a derived host adds to GetOptionsDescription.
    virtual void BuildCommandLineInternal();

    /// SetupBase, then SetupInternal.
    /// @param settingsPath  may be null; counts when the command line leaves the settings path empty
    void Setup(Commons::Diagnostics::LogLevel logLevel, const char* settingsPath);
    /// Environment, command line, settings, logging and signals: what every process has.
    void SetupBase(Commons::Diagnostics::LogLevel logLevel, const char* settingsPath);
    /// Sets up the components of `kind`, lowest first.
    void SetupBasicComponents(ApplicationSetupKind kind, ProcessKind processKind);

    void BuildCommandLine();
    void ParseCommandLine(int argc, char** argv);
    void ProcessCommandline();
    void LoadSettings();
    void ApplyCommandlineSettings();

    void SetupCommons(Commons::Diagnostics::LogLevel logLevel);
    void SetupLogging(Commons::Diagnostics::LogLevel logLevel);
    void SetupRemoting(bool isMainProcess);
    void SetupNotificationManager(bool withBroker) const;
    void SetupScm();
    void SetupSystem();

    void DisposeSystemManager();
    void DisposeDefaultComponents();
    void DisposeNotificationManager();
    void DisposeRemoting();
    void DisposeCheckAppDomainSingletons();
    void DisposeProcessManager();
    void DisposeCommons();

    /// The options as they are declared so far.
    boost::program_options::options_description& GetOptionsDescription();
    /// The values of the command line, empty before ParseCommandLine.
    [[nodiscard]] const boost::program_options::variables_map& GetParsedOptions() const;
    /// Everything that a host sets up, for the framework's own classes.
    ApplicationData& GetData();

    /// Calls `handler` for each SIGTERM and SIGINT, as ordinary code on a thread of its own.
    void SetSignalHandler(std::function<void(int signal)> handler);
    /// Signals the shutdown event, latched when there is none yet; no restart.
    void RequestShutdown();
    /// The same, and console hosts end too.
    void RequestProcessShutdown();
    /// Ends a console host, which looks at this flag alone.
    void RequestConsoleShutdown() noexcept;
    /// What console hosts look at: set by RestartSystem, by the shutdown of the process and by the console.
    [[nodiscard]] bool IsShutdownRequested() const noexcept;

private:
    void RecordFailure(const String& error) const;

    const std::unique_ptr<ApplicationData> data;
};

} // namespace Vela::System::Kiro::Internal
