// The plant: integrates the levels of the tanks on a thread of its own and offers their sensors and actuators as a
// remote service.

#include "PlantLibrary.hpp"
#include "TankModel.hpp"
#include "TankService.hpp"

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

#include <memory>
#include <mutex>
#include <optional>

namespace WaterTanks
{

using Vela::String;
using namespace Vela::System;
using namespace Vela::System::Kiro;

/// Simulator.settings.
struct SimulatorSettings final : Commons::Xml::IXmlSerializable
{
    double timeFactor = 1.0;
    Commons::Chrono::Duration stepTime{std::chrono::milliseconds(50)};

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext&) override
    {
        reader.TryGetAttributeValue("timeFactor", timeFactor);
        reader.TryGetAttributeValue("stepTime", stepTime);
    }

    void WriteXml(Commons::Xml::XmlWriter&, Commons::Xml::XmlSerializationContext&) override
    {
        throw Vela::NotImplementedException("WriteXml");
    }
};

class TankSimulator final : public ComponentBase,
                            public IControllerComponent,
                            public ITankService,
                            private Commons::Diagnostics::Loggable<TankSimulator>
{
public:
    TankSimulator(IApplication& application, ILibrary& library, const String& name)
        : ComponentBase(application, library, name, ComponentCategory::Custom, GetDefaultStartOrder(), true)
        , serviceFactory(static_cast<ITankService&>(*this))
    {
    }

    void LoadSettings(const String& settingsPath) override
    {
        Commons::Xml::XmlConfigDocument("SimulatorSettings", settings).Load(settingsPath);
    }

    void PublishServices() override
    {
        PublishComponentService(Rsc::OperationTable<ITankService>::interfaceName, &serviceFactory);
    }

    void Start() override
    {
        log.Info("The plant runs, {}x as fast as the world.", settings.timeFactor);
        worker.emplace(
            "TankSimulator", [this] { Advance(); }, settings.stepTime.GetMilliseconds());
        worker->Start();
    }

    void Stop() override
    {
        worker.reset();
        log.Info("The plant stands still.");
    }

    std::vector<TankState> GetTanks() override
    {
        const std::lock_guard lock(mutex);
        return {{model.GetLevel(TankModel::upper), TankModel::height},
                {model.GetLevel(TankModel::lower), TankModel::height}};
    }

    double GetDemand() override
    {
        const std::lock_guard lock(mutex);
        return model.GetDemand();
    }

    void SetActuators(double pump, double valve) override
    {
        const std::lock_guard lock(mutex);
        model.SetPump(pump);
        model.SetValve(valve);
    }

private:
    void Advance()
    {
        const std::lock_guard lock(mutex);
        model.Advance(settings.timeFactor * settings.stepTime.GetNanoseconds());
    }

    Rsc::RscServiceFactory<ITankService> serviceFactory;
    SimulatorSettings settings;
    std::mutex mutex;
    TankModel model;
    std::optional<Commons::Threading::WorkerThread> worker;
};

} // namespace WaterTanks

extern "C" Vela::System::Kiro::ILibrary& VelaDynamicLibraryMain(Vela::AppDomain& appDomain)
{
    static WaterTanks::PlantLibrary library(appDomain);
    return library.Add<WaterTanks::TankSimulator>("WaterTanks::TankSimulator");
}
