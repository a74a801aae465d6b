#include "AlarmServiceComponent.hpp"

#include <algorithm>

namespace WaterTanks
{

using Vela::String;
using namespace Vela::System;
using namespace Vela::System::Kiro;

AlarmServiceComponent::AlarmServiceComponent(IApplication& application, ILibrary& library, const String& name)
    : ComponentBase(application, library, name, ComponentCategory::Custom, GetDefaultStartOrder(), true)
    , serviceFactory(static_cast<IAlarmService&>(*this))
{
}

void AlarmServiceComponent::PublishServices()
{
    PublishComponentService(Rsc::OperationTable<IAlarmService>::interfaceName, &serviceFactory);
}

void AlarmServiceComponent::Raise(const AlarmText& text)
{
    const std::lock_guard lock(mutex);
    const String alarm = text.ToString();
    if (std::find(alarms.begin(), alarms.end(), alarm) == alarms.end())
    {
        alarms.push_back(alarm);
        log.Info("ALARM    {} (alarms: {})", alarm, alarms.size());
    }
}

void AlarmServiceComponent::Clear(const AlarmText& text)
{
    const std::lock_guard lock(mutex);
    const String alarm = text.ToString();
    if (std::erase(alarms, alarm) > 0)
    {
        log.Info("all well {} no more (alarms: {})", alarm, alarms.size());
    }
}

std::vector<AlarmText> AlarmServiceComponent::GetAlarms()
{
    const std::lock_guard lock(mutex);
    return {alarms.begin(), alarms.end()};
}

} // namespace WaterTanks
