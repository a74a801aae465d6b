// Holds both tanks at their setpoint: a control thread reads the plant's sensors and moves its actuators by remote
// calls, and reports when a level leaves its limits.

#include "AlarmService.hpp"
#include "LevelControl.hpp"
#include "PlantLibrary.hpp"
#include "TankService.hpp"

#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Chrono/TimeoutWatch.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>

namespace WaterTanks
{

using Vela::String;
using namespace Vela::System;
using namespace Vela::System::Kiro;

namespace
{

constexpr std::array tankNames{"upper", "lower"};

String DrawLevel(const TankState& tank)
{
    constexpr int width = 10;
    const int filled = static_cast<int>(std::lround(width * tank.level / tank.height));
    return fmt::format("[{:#<{}}{:.<{}}] {:.2f} m", "", filled, "", width - filled, tank.level);
}

} // namespace

/// LevelController.settings.
struct LevelControllerSettings final : Commons::Xml::IXmlSerializable
{
    Commons::Chrono::Duration cycleTime{std::chrono::milliseconds(100)};
    Commons::Chrono::Duration reportTime{std::chrono::seconds(2)};
    double setpoint = 1.0;
    double lowAlarm = 0.5;
    double highAlarm = 1.8;

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext&) override
    {
        reader.TryGetAttributeValue("cycleTime", cycleTime);
        reader.TryGetAttributeValue("reportTime", reportTime);
        reader.TryGetAttributeValue("setpoint", setpoint);
        reader.TryGetAttributeValue("lowAlarm", lowAlarm);
        reader.TryGetAttributeValue("highAlarm", highAlarm);
        if (lowAlarm >= highAlarm)
        {
            throw reader.Error("The low alarm {} must lie below the high alarm {}.", lowAlarm, highAlarm);
        }
    }

    void WriteXml(Commons::Xml::XmlWriter&, Commons::Xml::XmlSerializationContext&) override
    {
        throw Vela::NotImplementedException("WriteXml");
    }
};

class LevelController final : public ComponentBase,
                              public IControllerComponent,
                              private Commons::Diagnostics::Loggable<LevelController>
{
public:
    LevelController(IApplication& application, ILibrary& library, const String& name)
        : ComponentBase(application, library, name, ComponentCategory::Custom, GetDefaultStartOrder(), true)
    {
    }

    void SubscribeServices() override
    {
        tanks =
            Rsc::ServiceManager::GetService(TankServiceProxyFactory(), Rsc::ServiceProvider::Component("Simulator"));
        alarms = Rsc::ServiceManager::GetService(AlarmServiceProxyFactory(), Rsc::ServiceProvider::Component("Alarms"));
    }

    void LoadSettings(const String& settingsPath) override
    {
        Commons::Xml::XmlConfigDocument("LevelControllerSettings", settings).Load(settingsPath);
    }

    void Start() override
    {
        const std::chrono::duration<double> integralTime(2.0);
        pumpControl.emplace(settings.setpoint, 1.2, integralTime);
        valveControl.emplace(settings.setpoint, 1.0, integralTime);
        report.emplace(settings.reportTime.GetNanoseconds());
        report->Start();
        worker.emplace(
            "LevelController", [this] { RunCycle(); }, settings.cycleTime.GetMilliseconds());
        worker->Start();
    }

    void Stop() override
    {
        worker.reset();
    }

    void Dispose() override
    {
        worker.reset();
        tanks.reset();
        alarms.reset();
    }

private:
    struct Limits
    {
        bool isLow = false;
        bool isHigh = false;
    };

    /// One control cycle. A plant that does not answer is reported once, and tried again in the next cycle.
    void RunCycle()
    {
        try
        {
            Control();
            isPlantLost = false;
        }
        catch (...)
        {
            const auto failure = Vela::CaughtException::Current();
            if (!std::exchange(isPlantLost, true))
            {
                log.Error("The control cycle failed: {}", failure.GetText());
            }
        }
    }

    void Control()
    {
        const auto states = tanks->GetTanks();
        const double pump = pumpControl->Update(states.at(0).level, settings.cycleTime.GetNanoseconds());
        const double valve = valveControl->Update(states.at(1).level, settings.cycleTime.GetNanoseconds());
        tanks->SetActuators(pump, valve);
        for (std::size_t i = 0; i < tankNames.size(); ++i)
        {
            CheckLimits(tankNames[i], states.at(i).level, limits[i]);
        }
        if (report->HasTimeout())
        {
            report->Start();
            log.Info("upper {}   lower {}   pump {:3.0f} %   valve {:3.0f} %   demand {:2.0f} l/s",
                     DrawLevel(states[0]), DrawLevel(states[1]), 100 * pump, 100 * valve, tanks->GetDemand());
        }
    }

    void CheckLimits(const char* tank, double level, Limits& state)
    {
        SetAlarm(state.isLow, level < settings.lowAlarm, fmt::format("The {} tank runs low", tank));
        SetAlarm(state.isHigh, level > settings.highAlarm, fmt::format("The {} tank is nearly full", tank));
    }

    void SetAlarm(bool& stands, bool shallStand, const String& text)
    {
        if (stands != shallStand)
        {
            shallStand ? alarms->Raise(AlarmText(text)) : alarms->Clear(AlarmText(text));
            stands = shallStand;
        }
    }

    LevelControllerSettings settings;
    std::shared_ptr<ITankService> tanks;
    std::shared_ptr<IAlarmService> alarms;
    std::optional<LevelControl> pumpControl;
    std::optional<LevelControl> valveControl;
    std::optional<Commons::Chrono::TimeoutWatch> report;
    std::array<Limits, tankNames.size()> limits;
    bool isPlantLost = false;
    std::optional<Commons::Threading::WorkerThread> worker;
};

} // namespace WaterTanks

extern "C" Vela::System::Kiro::ILibrary& VelaDynamicLibraryMain(Vela::AppDomain& appDomain)
{
    static WaterTanks::PlantLibrary library(appDomain);
    return library.Add<WaterTanks::LevelController>("WaterTanks::LevelController");
}
