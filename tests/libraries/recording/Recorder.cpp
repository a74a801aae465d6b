#include "Recorder.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

namespace Vela::Testing
{

using namespace System::Kiro;

class Recorder::Service : public IRecordingService
{
public:
    explicit Service(Recorder& owner)
        : recorder(owner)
    {
    }

    Text GetName() override
    {
        return recorder.GetName();
    }

    std::uint32_t GetStepCount() override
    {
        return recorder.stepCount;
    }

    void Act(const Text& action) override
    {
        recorder.Report("Call");
        Testing::Act(action.ToString());
        recorder.Report("CallEnd");
    }

private:
    Recorder& recorder;
};

Recorder::Recorder(IApplication& application, ILibrary& library, const String& name, const RecorderTraits& traits)
    : ComponentBase(application, library, name, traits.category, traits.startOrder, traits.isSingleton)
    , process(application.GetName())
    , service(std::make_shared<Service>(*this))
{
    script.AddLines(ReadFile(System::Commons::Environment::GetVariableValueOr("RECORDING_SCRIPT", "")), name);
    Take("Create");
}

Recorder::~Recorder()
{
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    TakeLast();
}

void Recorder::TakeLast()
{
    try
    {
        Take("Destroy");
    }
    catch (const std::bad_alloc&)
    {
        // What the script throws may end the process; a lost line of the trace must not.
    }
}

void Recorder::Take(const char* step)
{
    ++stepCount;
    Report(step);
    for (const String& action : script.GetActions(step))
    {
        Act(action);
    }
}

void Recorder::Act(const String& action)
{
    String rest = action;
    const String verb = TakeWord(rest);
    if (verb == "publish")
    {
        Publish(rest);
    }
    else if (verb == "when")
    {
        const String fifo = TakeWord(rest);
        threads.emplace_back(
            [this, fifo, rest]
            {
                Testing::Act("await " + fifo);
                Act(rest);
            });
    }
    else if (verb == "call")
    {
        const String component = TakeWord(rest);
        System::Rsc::ServiceManager::GetService(RecordingServiceProxyFactory(),
                                                System::Rsc::ServiceProvider::Component(component))
            ->Act(rest);
    }
    else if (verb == "attempt")
    {
        // Not a virtual call: the destructor, which waits for a thread that comes here, has begun to change the object.
        const String name = ComponentBase::GetName();
        try
        {
            Act(rest);
            log.Info("{0} attempted '{1}'.", name, rest);
        }
        catch (...)
        {
            log.Info("{0} attempted '{1}': {2}", name, rest, CaughtException::Current().GetText());
        }
    }
    else
    {
        Testing::Act(action);
    }
}

void Recorder::Report(const char* step) const
{
    Trace(process, GetName(), step);
    log.Info("{0} takes step {1}", GetName(), step);
}

void Recorder::Publish(const String& serviceName)
{
    System::Rsc::RscServiceFactory<IRecordingService> factory(*service);
    PublishComponentService(serviceName.c_str(), &factory);
}

void Recorder::Initialize()
{
    Take("Initialize");
}

void Recorder::SubscribeServices()
{
    Take("SubscribeServices");
}

void Recorder::LoadSettings(const String& settingsPath)
{
    script.AddLines(ReadFile(settingsPath), GetName());
    Take("LoadSettings");
}

void Recorder::SetupSettings()
{
    Take("SetupSettings");
}

void Recorder::PublishServices()
{
    Take("PublishServices");
}

void Recorder::LoadConfig()
{
    Take("LoadConfig");
}

void Recorder::SetupConfig()
{
    Take("SetupConfig");
}

void Recorder::ResetConfig()
{
    Take("ResetConfig");
}

void Recorder::Dispose()
{
    Take("Dispose");
}

void Recorder::PowerDown()
{
    Take("PowerDown");
}

void RecordingController::Start()
{
    Take("Start");
}

void RecordingController::Stop()
{
    Take("Stop");
}

} // namespace Vela::Testing
