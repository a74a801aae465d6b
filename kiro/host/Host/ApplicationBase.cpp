#include <Host/ApplicationData.hpp>
#include <Host/GuardedSteps.hpp>
#include <Sm/KiroSecurityNotifications.hpp>
#include <Sm/SystemManager.hpp>
#include <Sm/TimelineDocument.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>
#include <Vela/VelaVersion.hpp>

#include <algorithm>
#include <array>
#include <iostream>

namespace Vela::System::Kiro::Internal
{

using Commons::Diagnostics::LogLevel;
using Commons::Diagnostics::LogManager;
using Commons::Runtime::SignalHandler;

namespace
{

/// The message of every top-level guard, for the exception being handled.
String DescribeCurrentException()
{
    return CaughtException::Current().Describe("Exception occurs: {0}", "Unspecified exception occurs.");
}

/// Those of a way back, which follows when a step has failed.
bool IsBackward(const String& step)
{
    static constexpr std::array steps{"StopComponent", "ResetComponentConfig", "DisposeComponent", "DestroyComponent",
                                      "UnloadLibrary"};
    return std::find(steps.begin(), steps.end(), step) != steps.end();
}

/// The step that ended a set-up, as fields of a record; none when it ended otherwise.
Commons::Diagnostics::CrashRecords::Fields FindFailedStep(const Services::Internal::Timeline& timeline)
{
    const auto last =
        std::find_if(timeline.steps.rbegin(), timeline.steps.rend(),
                     [](const auto& step)
                     { return (step.subject == "component" || step.subject == "library") && !IsBackward(step.step); });
    if (last == timeline.steps.rend() || last->outcome != "failed")
    {
        return {};
    }
    return {{last->subject, last->name}, {"step", last->step}};
}

} // namespace

ApplicationBase::ApplicationBase(const String& name, bool loadSettings)
    : data(std::make_unique<ApplicationData>(*this, name, loadSettings))
{
}

ApplicationBase::~ApplicationBase() = default;

String ApplicationBase::GetName() const
{
    return data->GetName();
}

int ApplicationBase::Main(int argc, char** argv, LogLevel logLevel)
{
    SignalHandler::BlockSignals();
    BuildCommandLine();
    ParseCommandLine(argc, argv);
    if (data->commandLine.Has(helpOptionName))
    {
        std::cout << data->commandLine.description << std::endl;
        return 0;
    }
    if (data->commandLine.Has(velaVersionOptionName))
    {
        std::cout << "Version VELA-Platform: " << VelaVersion::GetCurrent().ToString() << std::endl;
        return 0;
    }
    try
    {
        Setup(logLevel, nullptr);
        data->isSetUp = true;
        log.Info("Application '{0}' was setup successfully.", GetName());
        const std::int32_t result = Run();
        log.Info("Application '{0}' terminates.", GetName());
        return result;
    }
    catch (...)
    {
        const String error = DescribeCurrentException();
        LogFatal(error);
        RecordFailure(error);
        return 1;
    }
}

bool ApplicationBase::Dispose()
{
    if (GetName().empty())
    {
        return true;
    }
    bool isOrderly = true;
    const auto guard = [&](const std::function<void()>& step)
    {
        try
        {
            step();
        }
        catch (...)
        {
            LogFatal(DescribeCurrentException());
            isOrderly = false;
        }
    };
    guard([this] { DisposeInternal(); });
    data->shutdown.ReleaseEvent();
    guard([this] { DisposeCommons(); });
    data->SetName("");
    return isOrderly;
}

void ApplicationBase::RecordFailure(const String& error) const
{
    // A child that has lost its parent in the middle of its start has failed at nothing itself, and another system's
    // directory keeps that system's records only.
    if (data->parent.FindEnded() || data->isDirectoryTaken)
    {
        return;
    }
    const auto* systemManager = Singleton<Sm::SystemManager>::TryGetInstance();
    const bool isOfStart = systemManager != nullptr && !data->isSetUp;
    const auto timeline = isOfStart ? systemManager->GetDiagnostics().GetTimeline() : Services::Internal::Timeline();
    data->failureRecord.Write(GetName(), data->isSetUp ? "failed" : "failed set-up", error, FindFailedStep(timeline),
                              systemManager == nullptr ? std::vector<Sm::ProcessState>()
                                                       : systemManager->DescribeProcesses());
    if (isOfStart)
    {
        FailureRecord::WriteTimeline(Sm::MakeTimelineDocument(timeline));
    }
}

void ApplicationBase::RestartSystem()
{
    Singleton<Security::KiroSecurityNotifications>::GetInstance().SendSystemRestartingNotification();
    data->shutdown.RequestRestart();
}

bool ApplicationBase::IsRestartRequested() const noexcept
{
    return data->shutdown.IsRestartRequested();
}

bool ApplicationBase::IsRestartWithdrawn() const noexcept
{
    return data->shutdown.IsSystemShutdownLast();
}

void ApplicationBase::WaitForShutdown()
{
    data->shutdown.Wait();
}

void ApplicationBase::LogFatal(const String& message)
{
    const String name = GetName();
    if (data->supervision)
    {
        data->supervision->ReportFailure(message);
    }
    if (LogManager::TryGetInstance() != nullptr)
    {
        if (!name.empty())
        {
            log.Fatal("Fatal error occurs in application '{0}':", name);
        }
        log.Fatal("{0}", message);
        return;
    }
    if (!name.empty())
    {
        std::cout << "Fatal error occurs in application '" << name << "':\n";
    }
    std::cout << message << std::endl;
}

std::int32_t ApplicationBase::Run()
{
    WaitForShutdown();
    return 0;
}

void ApplicationBase::BuildCommandLineInternal()
{
}

boost::program_options::options_description& ApplicationBase::GetOptionsDescription()
{
    return data->commandLine.description;
}

const boost::program_options::variables_map& ApplicationBase::GetParsedOptions() const
{
    return data->commandLine.values;
}

ApplicationData& ApplicationBase::GetData()
{
    return *data;
}

void ApplicationBase::SetSignalHandler(SignalHandler::Handler handler)
{
    data->signalHandler->SetHandler(std::move(handler));
    data->hasSignalHandler = true;
}

void ApplicationBase::RequestShutdown()
{
    data->shutdown.RequestSystemShutdown();
}

void ApplicationBase::RequestProcessShutdown()
{
    data->shutdown.RequestProcessShutdown();
}

void ApplicationBase::RequestConsoleShutdown() noexcept
{
    data->shutdown.RequestConsoleShutdown();
}

bool ApplicationBase::IsShutdownRequested() const noexcept
{
    return data->shutdown.IsShutdownRequested();
}

} // namespace Vela::System::Kiro::Internal
