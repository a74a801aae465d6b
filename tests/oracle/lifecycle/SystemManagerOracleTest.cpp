// The real system manager, process manager, remoting and notifications, in one process: the way up, power down, the way
// down.

#include "RecorderStage.hpp"
#include "SystemModel.hpp"

#include <Pm/ProcessManager.hpp>
#include <Settings/ProcessSettings.hpp>
#include <Sm/SystemManager.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/NmPayload/Kiro/SystemManagerStatePayload.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

namespace Vela::Testing
{
namespace
{

using namespace System;
using namespace System::Kiro::Internal;
using Commons::Environment;
using NmPayload::Kiro::SystemManagerStatePayload;

/// What the system manager has announced.
class Announcements
{
public:
    /// The announcements since the last call.
    Trace Take()
    {
        end.Send(SystemManagerStatePayload());
        std::unique_lock lock(mutex);
        condition.wait(lock, [this] { return hasEnded; });
        hasEnded = false;
        return std::exchange(texts, {});
    }

private:
    static constexpr const char* endName = "Vela.System.Kiro.SystemManager.End";

    void Add(const Nm::Notification& notification)
    {
        const std::lock_guard lock(mutex);
        if (notification.name == endName)
        {
            hasEnded = true;
            condition.notify_all();
        }
        else if (notification.name.ends_with(".Startup"))
        {
            texts.emplace_back("Startup");
        }
        else
        {
            const auto payload = notification.GetPayload<SystemManagerStatePayload>();
            texts.push_back(fmt::format("State {} {}", static_cast<int>(payload.GetState()), payload.HasError()));
        }
    }

    std::mutex mutex;
    std::condition_variable condition;
    bool hasEnded = false;
    Trace texts;
    Nm::NotificationRegistration<SystemManagerStatePayload> end{endName, "Test", Nm::Severity::Information};
    Nm::NotificationSubscription subscription{"Vela.System.Kiro.SystemManager.*",
                                              [this](const Nm::Notification& notification)
                                              {
                                                  Add(notification);
                                              }};
};

class MainProcess : public Kiro::IApplication, public Pm::IProcessHost
{
public:
    [[nodiscard]] String GetName() const override
    {
        return LifecycleCase::mainProcess;
    }

    void RequestProcessShutdown() override
    {
    }
};

/// Remoting and notifications, which all cases share.
class SystemStage : public RecorderStage
{
public:
    SystemStage()
    {
        Environment::SetVariable(Environment::runtimeDirectoryName, directory / "run");
        Rsc::RscManager::CreateInstance(LifecycleCase::mainProcess, 0, Rsc::RscManagerOptions(), true);
        Nm::NotificationManagerSetup::Setup(LifecycleCase::mainProcess, true);
        Nm::NotificationManagerSetup::StartDispatching();
        announcements.emplace();
    }

    ~SystemStage()
    {
        announcements.reset();
        Nm::NotificationManagerSetup::Dispose();
        Rsc::RscManager::DisposeInstance();
    }

    [[nodiscard]] std::string GetConfigPath() const
    {
        return directory / "test.config";
    }

    Trace Observe(const LifecycleCase& system)
    {
        Prepare(system);
        directory.Write("test.config", system.GetDocument(GetLibraryPath()));
        Trace trace;
        TakeLog(trace);
        trace.clear();
        Singleton<Pm::ProcessManager>::CreateInstance(process, process).Setup();
        Run(system, trace);
        Trace ends;
        Singleton<Pm::ProcessManager>::GetInstance().Dispose();
        Singleton<Pm::ProcessManager>::DisposeInstance();
        TakeLog(ends);
        std::sort(ends.begin(), ends.end());
        Append(trace, ends);
        return trace;
    }

private:
    void Run(const LifecycleCase& system, Trace& trace)
    {
        RecorderHost host;
        host.configPath = GetConfigPath();
        Sm::SystemManager manager(host, settings, system.isSingleProcess);
        std::optional<ModelFailure> failure;
        try
        {
            manager.SetupSystem();
        }
        catch (...)
        {
            failure = GetCurrentFailure();
            failure->text = WithoutPosition(failure->text);
        }
        TakeLog(trace);
        trace.push_back(DescribeSetup(failure));
        if (!failure)
        {
            AppendAnswers(manager, trace);
        }
        Append(trace, announcements->Take());
        if (!system.operations.empty())
        {
            manager.PowerDown();
        }
        const bool isOrderly = manager.Dispose();
        TakeLog(trace);
        trace.push_back(isOrderly ? "Disposed" : "Disposed with failures");
    }

    /// The model knows no lines of documents.
    [[nodiscard]] std::string WithoutPosition(const std::string& text) const
    {
        return text.substr(0, text.find(" (" + GetConfigPath() + ":"));
    }

    static void AppendAnswers(const Sm::SystemManager& manager, Trace& trace)
    {
        for (const String& name : manager.GetApplicationNames())
        {
            trace.push_back("Process " + name);
        }
        for (const auto& info : manager.GetComponentInfos())
        {
            const String name = info.name.ToString();
            trace.push_back(fmt::format("{} {} {} {} {} {} {}", name, info.type.ToString(), info.library.ToString(),
                                        info.startOrder, info.isRequired, info.isEnabled,
                                        manager.GetProcessNameOfComponent(name)));
        }
    }

    MainProcess process;
    Settings::ProcessSettings settings;
    std::optional<Announcements> announcements;
};

LifecycleCase Generate(Random& random)
{
    LifecycleCase system =
        GenerateSystem(random, {.maxProcesses = 1, .maxComponents = 6, .external = 100, .hasLostCalls = false});
    if (random.Chance(30))
    {
        system.operations.emplace_back("PowerDown");
    }
    return system;
}

Trace Predict(const LifecycleCase& system, const SystemModel::Surroundings& surroundings)
{
    SystemModel model(system, surroundings);
    Trace& trace = model.lifecycle.trace;
    const auto failure = model.Setup();
    trace.push_back(DescribeSetup(failure));
    if (!failure)
    {
        for (const std::string& name : model.lifecycle.GetConnectedProcesses())
        {
            trace.push_back("Process " + name);
        }
        Append(trace, model.lifecycle.GetComponentInfos());
    }
    Append(trace, model.notifications);
    if (!system.operations.empty())
    {
        model.lifecycle.PowerDownComponents();
    }
    model.Dispose();
    trace.emplace_back("Disposed");
    model.lifecycle.EndProcesses();
    return trace;
}

} // namespace

TEST(LifecycleOracle, HoldsForTheSystemManager)
{
    SystemStage stage;
    const SystemModel::Surroundings surroundings{stage.GetConfigPath(), RecorderStage::GetLibraryPath(), false};
    ExpectNoDifference<LifecycleCase>(
        {.generate = Generate,
         .predict = [&](const LifecycleCase& system) { return Predict(system, surroundings); },
         .observe = [&](const LifecycleCase& system) { return stage.Observe(system); },
         .simplify = Simplify,
         .missing = {"by exception: InvalidConfigException", "by unspecified exception", "State 1 true", "State 2 true",
                     "State 3 true", "State 3 false", "The system is up", "PowerDown component"}},
        3000);
}

} // namespace Vela::Testing
