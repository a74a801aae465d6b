#pragma once

#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

#include <cstdint>
#include <tuple>
#include <vector>

namespace WaterTanks
{

/// One tank as its sensor sees it.
struct TankState
{
    double level = 0;  ///< metres of water
    double height = 0; ///< metres
};

/// The plant's sensors and actuators. Declared once: interface, operation table, one line per operation in the proxy.
class ITankService : public Vela::System::Rsc::IRscService
{
public:
    /// The upper tank first.
    virtual std::vector<TankState> GetTanks() = 0;
    /// What the consumers take, in litres per second.
    virtual double GetDemand() = 0;
    /// Share of the pump's capacity and opening of the valve between the tanks, both 0 to 1.
    virtual void SetActuators(double pump, double valve) = 0;
};

} // namespace WaterTanks

namespace Vela::System::Rsc
{

template <>
struct StructFields<WaterTanks::TankState>
{
    static constexpr auto fields = std::tuple(&WaterTanks::TankState::level, &WaterTanks::TankState::height);
};

template <>
struct OperationTable<WaterTanks::ITankService>
{
    static constexpr const char* interfaceName = "WaterTanks.ITankService";
    static constexpr auto operations =
        Operations(Operation<1, &WaterTanks::ITankService::GetTanks>("GetTanks"),
                   Operation<2, &WaterTanks::ITankService::GetDemand>("GetDemand"),
                   Operation<3, &WaterTanks::ITankService::SetActuators>("SetActuators"));
};

} // namespace Vela::System::Rsc

namespace WaterTanks
{

class TankServiceProxy final : public Vela::System::Rsc::RscServiceProxyBase<ITankService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;

    std::vector<TankState> GetTanks() override
    {
        return Invoke<&ITankService::GetTanks>();
    }

    double GetDemand() override
    {
        return Invoke<&ITankService::GetDemand>();
    }

    void SetActuators(double pump, double valve) override
    {
        Invoke<&ITankService::SetActuators>(pump, valve);
    }
};

using TankServiceProxyFactory = Vela::System::Rsc::RscServiceProxyFactory<ITankService, TankServiceProxy>;

} // namespace WaterTanks
