// What every process has before its basic components: command line, settings, environment, logging and signals.

#include <Host/ApplicationData.hpp>
#include <Host/DebugBreak.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/EnvironmentData.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>
#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/VelaVersion.hpp>

namespace Vela::System::Kiro::Internal
{

using Commons::Environment;
using Commons::EnvironmentData;
using Commons::Diagnostics::LogLevel;
using Commons::Diagnostics::LogManager;
using Commons::Io::Path;
using Commons::Runtime::SignalHandler;

namespace
{

/// The core of a process that is not bound.
constexpr std::int32_t allProcessors = -1;

/// Its path, or why it has none: it may have been removed.
String DescribeCurrentDirectory()
{
    try
    {
        return Commons::Io::Directory::GetCurrent();
    }
    catch (const Exception& exception)
    {
        return exception.GetMessage();
    }
}

} // namespace

void ApplicationBase::Setup(LogLevel logLevel, const char* settingsPath)
{
    SetupBase(logLevel, settingsPath);
    SetupInternal();
    if (!data->hasSignalHandler)
    {
        SetSignalHandler([this](int) { RequestShutdown(); });
    }
}

void ApplicationBase::SetupBase(LogLevel logLevel, const char* settingsPath)
{
    Environment::Setup();
    data->executablePath = Environment::GetExecutablePath();
    AppDomainSingleton<EnvironmentData>::GetInstance().AddDefaultVariable(Environment::binDirectoryName,
                                                                          Path::GetDirectoryName(data->executablePath));
    BuildCommandLine();
    ProcessCommandline();
    if (data->areSettingsEnabled)
    {
        if (settingsPath != nullptr && data->settingsPath.empty())
        {
            data->settingsPath = settingsPath;
        }
        LoadSettings();
    }
    ApplyCommandlineSettings();
    SetupCommons(logLevel);
    data->shutdown.CreateEvent();
    if (data->isDebugBreak)
    {
        log.Info("Debug Break: press any key to continue");
        // A child is not tied to the life of its parent yet.
        WaitForKeyOrDebugger([this] { return data->shutdown.IsEnding() || data->parent.FindEnded(); });
    }
    log.Info("VelaVersion: {0}", VelaVersion::GetCurrent().ToString());
    log.Debug("Starting application '{0}' in current directory:", GetName());
    log.Debug("{0}", DescribeCurrentDirectory());
    if (data->areSettingsEnabled && !data->settingsPath.empty())
    {
        log.Debug("Load Kiro settings from: {0}", data->settingsPath);
    }
}

void ApplicationBase::BuildCommandLine()
{
    if (data->commandLine.Build())
    {
        BuildCommandLineInternal();
    }
}

void ApplicationBase::ParseCommandLine(int argc, char** argv)
{
    data->commandLine.Parse(argc, argv);
}

void ApplicationBase::ProcessCommandline()
{
    const CommandLine& options = data->commandLine;
    data->parent.TakeOver(options.Has(MainApplicationBase::startAsChildOptionName));
    if (const auto name = options.Find<String>(applicationOptionName))
    {
        // An empty name stands for an application that has been disposed.
        if (name->empty())
        {
            throw ArgumentException("The application name must not be empty.");
        }
        data->SetName(*name);
    }
    Singleton<AppDomain>::GetInstance().SetApplicationName(GetName());
    data->localTcpPort = options.Find<std::int32_t>(localTcpPortOptionName).value_or(data->localTcpPort);
    data->settingsPath = options.Find<String>(settingsOptionName).value_or(data->settingsPath);
    data->configPath = options.Find<String>(configOptionName).value_or(data->configPath);
    data->core = options.Find<std::int32_t>(coreOptionName).value_or(data->core);
    data->isDebugBreak = options.Find<bool>(debugBreakOptionName).value_or(data->isDebugBreak);
    data->isSingleProcessGiven = options.Has(singleProcessOptionName);
    data->singleProcess = options.Find<bool>(singleProcessOptionName).value_or(data->singleProcess);
    if (const auto port = options.Find<std::uint16_t>(gatewayPortOptionName))
    {
        AppDomainSingleton<EnvironmentData>::GetInstance().AddDefaultVariable(Rsc::RscManager::gatewayPortVariable,
                                                                              std::to_string(*port));
    }
}

void ApplicationBase::LoadSettings()
{
    if (data->settingsPath.empty())
    {
        return;
    }
    Settings::KiroSettingsLoader::Load(data->settingsPath, data->settings, false);
    if (data->core == defaultCore)
    {
        data->core = data->settings.GetProcessSettings().GetDefaultProcessAffinityMask();
        data->isCoreFromSettings = true;
    }
}

void ApplicationBase::ApplyCommandlineSettings()
{
    if (data->isSingleProcessGiven)
    {
        data->settings.GetProcessSettings().SetSingleProcess(data->singleProcess);
    }
    // Before the first thread starts, since threads inherit the processor.
    if (data->core != allProcessors && (data->core != defaultCore || data->isCoreFromSettings))
    {
        data->processors.Bind(data->core);
    }
}

void ApplicationBase::SetupCommons(LogLevel logLevel)
{
    SetupLogging(logLevel);
    data->signalHandler = std::make_unique<SignalHandler>();
    data->hasSignalHandler = false;
    data->signalHandler->Setup();
    // Until a derived host takes over, a signal ends the process as soon as it is set up. A child that ended so would
    // make the start of the whole system fail, so there it waits.
    if (!data->parent.IsKnown())
    {
        SetSignalHandler([this](int) { RequestShutdown(); });
    }
    Environment::SetupSettings(data->settings.GetEnvironmentVariables());
    Environment::SetupSecuritySettings(data->settings.GetSecuritySettings().GetPath());
}

void ApplicationBase::SetupLogging(LogLevel logLevel)
{
    const Settings::LogSettings& settings = data->settings.GetLogSettings();
    LogLevel level = logLevel == LogLevel::None ? LogLevel::Info : logLevel;
    if (settings.GetLogLevel() != LogLevel::None)
    {
        level = settings.GetLogLevel();
    }
    if (const auto text = data->commandLine.Find<String>(logLevelOptionName))
    {
        level = GetEnumValue<LogLevel>(*text);
    }
    const String& configFile = settings.GetConfigFile();
    if (!configFile.empty())
    {
        if (!Commons::Io::File::Exists(configFile))
        {
            throw NotExistException("Log configuration file '{0}' does not exist.", configFile);
        }
        LogManager::CreateInstanceFromFile(level, configFile);
    }
    else if (settings.HasLogDir())
    {
        LogManager::CreateInstance(level, Path::Combine(settings.GetLogDir(), GetName() + logFileExtension));
    }
    else
    {
        LogManager::CreateInstance(level);
    }
}

} // namespace Vela::System::Kiro::Internal
