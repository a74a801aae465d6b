#include "TankModel.hpp"

#include <algorithm>
#include <cmath>

namespace WaterTanks
{

namespace
{

constexpr double area = 1.0;           // square metres
constexpr double pumpCapacity = 60.0;  // litres per second
constexpr double valveCapacity = 60.0; // litres per second at one metre of water
constexpr double usualDemand = 28.0;   // litres per second
constexpr double peakDemand = 75.0;    // litres per second
constexpr double peakEvery = 120.0;    // seconds
constexpr double peakBegins = 30.0;    // seconds
constexpr double peakLasts = 25.0;     // seconds
constexpr double litresPerCubicMetre = 1000.0;

} // namespace

void TankModel::Advance(std::chrono::duration<double> step)
{
    const double seconds = step.count();
    // Torricelli: what runs out under gravity grows with the root of the level.
    const double between = std::min(valveCapacity * valve * std::sqrt(levels[upper]),
                                    levels[upper] * area * litresPerCubicMetre / seconds);
    const double drained = std::min(GetDemand(), levels[lower] * area * litresPerCubicMetre / seconds + between);
    const double toMetres = seconds / (area * litresPerCubicMetre);
    levels[upper] = std::clamp(levels[upper] + (pumpCapacity * pump - between) * toMetres, 0.0, height);
    levels[lower] = std::clamp(levels[lower] + (between - drained) * toMetres, 0.0, height);
    time += step;
}

void TankModel::SetPump(double share)
{
    pump = std::clamp(share, 0.0, 1.0);
}

void TankModel::SetValve(double opening)
{
    valve = std::clamp(opening, 0.0, 1.0);
}

double TankModel::GetLevel(std::size_t tank) const
{
    return levels.at(tank);
}

double TankModel::GetPump() const
{
    return pump;
}

double TankModel::GetValve() const
{
    return valve;
}

double TankModel::GetDemand() const
{
    const double phase = std::fmod(time.count(), peakEvery);
    return phase >= peakBegins && phase < peakBegins + peakLasts ? peakDemand : usualDemand;
}

} // namespace WaterTanks
