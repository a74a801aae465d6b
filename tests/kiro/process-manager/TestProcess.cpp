#include "TestProcess.hpp"

#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Kiro/LibraryBase.hpp>

namespace Vela::Testing
{

using namespace System::Kiro;
using System::Kiro::Internal::Pm::StaticLibrariesLoader;

namespace
{

StepRecord stepRecord;

class Component : public ComponentBase
{
public:
    using ComponentBase::ComponentBase;

    ~Component() override
    {
        stepRecord.steps.emplace_back("Destroyed");
    }

    void Initialize() override
    {
        stepRecord.Take("Initialize");
    }

    void SubscribeServices() override
    {
        stepRecord.Take("SubscribeServices");
    }

    void LoadSettings(const String& settingsPath) override
    {
        stepRecord.Take("LoadSettings " + settingsPath);
    }

    void SetupSettings() override
    {
        stepRecord.Take("SetupSettings");
    }

    void PublishServices() override
    {
        stepRecord.Take("PublishServices");
    }

    void LoadConfig() override
    {
        stepRecord.Take("LoadConfig");
    }

    void SetupConfig() override
    {
        stepRecord.Take("SetupConfig");
    }

    void ResetConfig() override
    {
        stepRecord.Take("ResetConfig");
    }

    void Dispose() override
    {
        stepRecord.Take("Dispose");
    }

    void PowerDown() override
    {
        stepRecord.Take("PowerDown");
    }
};

class ControllerComponent : public Component, public IControllerComponent
{
public:
    using Component::Component;

    void Start() override
    {
        stepRecord.Take("Start");
    }

    void Stop() override
    {
        stepRecord.Take("Stop");
    }
};

class StaticLibrary : public LibraryBase
{
public:
    explicit StaticLibrary(AppDomain& appDomain)
        : LibraryBase(appDomain, BasicVersion(5, 6, 7, 8))
    {
        AddComponentFactoryMethod("Plain", &Create<Component, ComponentCategory::Custom>);
        AddComponentFactoryMethod("Controller", &Create<ControllerComponent, ComponentCategory::System>);
        AddComponentFactoryMethod("Nothing",
                                  [](IApplication&, const String&) { return std::shared_ptr<IComponent>(); });
    }

    static ILibrary& Main(AppDomain& appDomain)
    {
        static StaticLibrary library(appDomain);
        return library;
    }

private:
    template <typename T, ComponentCategory Category>
    static std::shared_ptr<IComponent> Create(IApplication& application, const String& name)
    {
        return std::make_shared<T>(application, Main(AppDomain::CreateInstance()), name, Category, 77U, false);
    }
};

const bool isRegistered = (StaticLibrariesLoader::RegisterLibrary(&StaticLibrary::Main), true);

} // namespace

void StepRecord::Take(const String& step)
{
    steps.push_back(step);
    if (failing.contains(step))
    {
        throw StepFailure{step};
    }
}

TestProcess::TestProcess()
    : record(stepRecord)
{
    System::Commons::Environment::Setup();
    System::Commons::Environment::SetVariable("RECORDING_SCRIPT", "");
    System::Commons::Environment::SetVariable("RECORDING_TRACE", "");
    processManager.LoadStaticLibraries();
    record = {};
}

TestProcess::~TestProcess()
{
    processManager.Dispose();
    System::Commons::Environment::Dispose();
}

} // namespace Vela::Testing
