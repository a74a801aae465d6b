#include <Settings/ProcessSettings.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Settings
{

using Commons::Chrono::Duration;
using std::chrono::milliseconds;

void ProcessSettings::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext&)
{
    reader.GetAttributeValue(singleProcessXmlName, singleProcess);
    const std::pair<const char*, milliseconds ProcessSettings::*> times[] = {
        {startWaitTimeXmlName, &ProcessSettings::startWaitTime},
        {stopWaitTimeXmlName, &ProcessSettings::stopWaitTime},
        {watchdogIdleTimeXmlName, &ProcessSettings::watchdogIdleTime},
        {watchdogDelayTimeXmlName, &ProcessSettings::watchdogDelayTime},
        {slowStepTimeXmlName, &ProcessSettings::slowStepTime},
    };
    for (const auto& [name, member] : times)
    {
        Duration time(this->*member);
        reader.TryGetAttributeValue(name, time);
        this->*member = time.GetMilliseconds();
    }
    reader.TryGetAttributeValue(defaultProcessAffinityMaskXmlName, defaultProcessAffinityMask);
}

bool ProcessSettings::IsSingleProcess() const noexcept
{
    return singleProcess;
}

void ProcessSettings::SetSingleProcess(bool isSingle) noexcept
{
    singleProcess = isSingle;
}

milliseconds ProcessSettings::GetStartWaitTime() const noexcept
{
    return startWaitTime;
}

milliseconds ProcessSettings::GetStopWaitTime() const noexcept
{
    return stopWaitTime;
}

milliseconds ProcessSettings::GetWatchdogIdleTime() const noexcept
{
    return watchdogIdleTime;
}

milliseconds ProcessSettings::GetWatchdogDelayTime() const noexcept
{
    return watchdogDelayTime;
}

milliseconds ProcessSettings::GetSlowStepTime() const noexcept
{
    return slowStepTime;
}

std::int32_t ProcessSettings::GetDefaultProcessAffinityMask() const noexcept
{
    return defaultProcessAffinityMask;
}

} // namespace Vela::System::Kiro::Internal::Settings
