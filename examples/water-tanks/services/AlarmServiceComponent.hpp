#pragma once

#include "AlarmService.hpp"

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

#include <mutex>
#include <vector>

namespace WaterTanks
{

/// Keeps the alarms that stand and tells of each that comes or goes.
class AlarmServiceComponent final : public Vela::System::Kiro::ComponentBase,
                                    public IAlarmService,
                                    private Vela::System::Commons::Diagnostics::Loggable<AlarmServiceComponent>
{
public:
    AlarmServiceComponent(Vela::System::Kiro::IApplication& application, Vela::System::Kiro::ILibrary& library,
                          const Vela::String& name);

    void PublishServices() override;

    void Raise(const AlarmText& text) override;
    void Clear(const AlarmText& text) override;
    std::vector<AlarmText> GetAlarms() override;

private:
    Vela::System::Rsc::RscServiceFactory<IAlarmService> serviceFactory;
    std::mutex mutex;
    std::vector<Vela::String> alarms;
};

} // namespace WaterTanks
