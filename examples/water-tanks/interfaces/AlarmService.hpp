#pragma once

#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>
#include <Vela/System/Rsc/RscString.hpp>

#include <vector>

namespace WaterTanks
{

using AlarmText = Vela::System::Rsc::RscString<128>;

/// Where components report that something is wrong, and that it is right again.
class IAlarmService : public Vela::System::Rsc::IRscService
{
public:
    /// Raises an alarm; one that stands already is left as it is.
    virtual void Raise(const AlarmText& text) = 0;
    /// Clears an alarm; one that does not stand is no error.
    virtual void Clear(const AlarmText& text) = 0;
    /// The alarms that stand, the oldest first.
    virtual std::vector<AlarmText> GetAlarms() = 0;
};

} // namespace WaterTanks

namespace Vela::System::Rsc
{

template <>
struct OperationTable<WaterTanks::IAlarmService>
{
    static constexpr const char* interfaceName = "WaterTanks.IAlarmService";
    static constexpr auto operations = Operations(Operation<1, &WaterTanks::IAlarmService::Raise>("Raise"),
                                                  Operation<2, &WaterTanks::IAlarmService::Clear>("Clear"),
                                                  Operation<3, &WaterTanks::IAlarmService::GetAlarms>("GetAlarms"));
};

} // namespace Vela::System::Rsc

namespace WaterTanks
{

class AlarmServiceProxy final : public Vela::System::Rsc::RscServiceProxyBase<IAlarmService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;

    void Raise(const AlarmText& text) override
    {
        Invoke<&IAlarmService::Raise>(text);
    }

    void Clear(const AlarmText& text) override
    {
        Invoke<&IAlarmService::Clear>(text);
    }

    std::vector<AlarmText> GetAlarms() override
    {
        return Invoke<&IAlarmService::GetAlarms>();
    }
};

using AlarmServiceProxyFactory = Vela::System::Rsc::RscServiceProxyFactory<IAlarmService, AlarmServiceProxy>;

} // namespace WaterTanks
