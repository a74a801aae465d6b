#include <Host/ApplicationData.hpp>
#include <Host/GuardedSteps.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Diagnostics/CrashHandler.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>
#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <boost/program_options/options_description.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <boost/program_options/variables_map.hpp>
#include <sys/prctl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>

namespace Vela::System::Kiro::Internal
{

using Commons::Diagnostics::Logger;
using Commons::Diagnostics::LogManager;

namespace
{

/// Remoting, notifications and the process manager.
constexpr auto childSetupKind =
    ApplicationSetupKind::Remoting | ApplicationSetupKind::NotificationManager | ApplicationSetupKind::ProcessManager;
constexpr auto mainSetupKind =
    childSetupKind | ApplicationSetupKind::SystemManager | ApplicationSetupKind::SystemConfigurationManager;

constexpr int timeForTheLastMessage = 1000; // milliseconds

Logger& GetLog()
{
    return Logger::Get(typeid(MainApplicationBase));
}

} // namespace

MainApplicationBase::MainApplicationBase(const String& name, bool isMainProcess, bool isChildProcess, bool loadSettings)
    : ApplicationBase(name, loadSettings)
    , processKind(isMainProcess ? ProcessKind::Main : ProcessKind::Child)
{
    if (isMainProcess && isChildProcess)
    {
        throw InvalidOperationException(" 'isMainProcess' and 'isChildProcess' are true!");
    }
}

MainApplicationBase::~MainApplicationBase() = default;

ProcessKind MainApplicationBase::GetProcessKind() const noexcept
{
    return processKind;
}

void MainApplicationBase::BuildCommandLineInternal()
{
    namespace po = boost::program_options;
    // clang-format off
    GetOptionsDescription().add_options()
        (startAsMainOptionName, po::value<bool>(), startAsMainOptionDescription)
        (startAsChildOptionName, po::value<bool>(), startAsChildOptionDescription);
    // clang-format on
}

void MainApplicationBase::ProcessCommandLineInternal()
{
    const bool isChildGiven = GetParsedOptions().count(startAsChildOptionName) != 0;
    if (GetParsedOptions().count(startAsMainOptionName) != 0)
    {
        if (isChildGiven)
        {
            throw InvalidOperationException("Only one program option of the options '{0},{1}' is allowed.",
                                            startAsMainOptionName, startAsChildOptionName);
        }
        processKind = ProcessKind::Main;
    }
    else if (isChildGiven)
    {
        processKind = ProcessKind::Child;
    }
}

void MainApplicationBase::SetupInternal()
{
    SetupExceptionHandler();
    Commons::Diagnostics::CrashHandler::Install(GetName());
    ProcessCommandLineInternal();
    if (processKind == ProcessKind::Main)
    {
        SetupTerminateHandler();
        auto& supervision = GetData().supervision;
        supervision = std::make_unique<Supervision>();
        SetupBasicComponents(mainSetupKind, ProcessKind::Main);
        supervision->ReportReady();
        return;
    }
    TieLifeToParent();
    SetupBasicComponents(childSetupKind, ProcessKind::Child);
    // Not before it can ask the main process: what came earlier has been waiting for this.
    SetupTerminateHandler();
}

void MainApplicationBase::TieLifeToParent()
{
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0)
    {
        throw InvalidOperationException("prctl(PR_SET_PDEATHSIG, SIGKILL) failed for child process");
    }
    // A parent that died before the call sends nothing any more.
    if (const auto parentId = GetData().parent.FindEnded())
    {
        throw InvalidOperationException("The process {0} that started this child process has ended.", *parentId);
    }
}

void MainApplicationBase::DisposeInternal()
{
    GuardedSteps steps;
    const auto& supervision = GetData().supervision;
    const bool isRestart = IsRestartRequested();
    if (supervision)
    {
        isRestart ? supervision->ReportRestarting() : supervision->ReportStopping();
    }
    steps.Run([this] { ApplicationBase::DisposeInternal(); });
    if (supervision && isRestart && IsRestartWithdrawn())
    {
        supervision->ReportStopping();
    }
    if (processKind != ProcessKind::Main)
    {
        steps.Run(
            []
            {
                if (prctl(PR_SET_PDEATHSIG, 0) != 0)
                {
                    throw InvalidOperationException("prctl(PR_SET_PDEATHSIG, 0) failed");
                }
            });
    }
    steps.ThrowFirstFailure();
}

void MainApplicationBase::SetupTerminateHandler()
{
    SetSignalHandler([this](int signal) { TerminateHandler(signal); });
}

void MainApplicationBase::TerminateHandler(int signal)
{
    try
    {
        GetLog().Info("Signal {0} requests the shutdown of the system.", signal);
        Rsc::ServiceManager::GetService(Services::Internal::SystemManagerServiceProxyFactory::GetInstance())
            ->Shutdown();
    }
    catch (...)
    {
        GetLog().Info("{0}", CaughtException::Current().Describe(
                                 "The system cannot be asked to shut down ({0}); this process ends on its own.",
                                 "The system cannot be asked to shut down; this process ends on its own."));
        RequestShutdown();
    }
}

void MainApplicationBase::SetupExceptionHandler() const
{
    std::set_terminate(&MainApplicationBase::ExceptionHandler);
}

void MainApplicationBase::ExceptionHandler() noexcept
{
    static std::atomic<pid_t> handlingThread{0};
    const pid_t thread = gettid();
    pid_t first = 0;
    if (!handlingThread.compare_exchange_strong(first, thread))
    {
        if (first == thread)
        {
            std::abort();
        }
        // The first one's message has its time, and some more for its way out of the log.
        Commons::Threading::Thread::Sleep(3 * timeForTheLastMessage);
        std::abort();
    }
    String message = "Terminate application after ";
    message += CaughtException::Current().Describe("unexpected exception:\r\n{0}", "unknown exception");
    if (LogManager* manager = LogManager::TryGetInstance())
    {
        GetLog().Fatal("{0}", message);
        manager->Flush();
    }
    else
    {
        std::cout << message << std::endl;
    }
    Commons::Threading::Thread::Sleep(timeForTheLastMessage);
    std::abort();
}

} // namespace Vela::System::Kiro::Internal
