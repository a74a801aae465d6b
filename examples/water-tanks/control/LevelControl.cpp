#include "LevelControl.hpp"

#include <algorithm>

namespace WaterTanks
{

LevelControl::LevelControl(double levelSetpoint, double proportionalGain, std::chrono::duration<double> integralTime)
    : setpoint(levelSetpoint)
    , gain(proportionalGain)
    , resetTime(integralTime)
{
}

double LevelControl::Update(double level, std::chrono::duration<double> step)
{
    const double error = setpoint - level;
    const double output = gain * error + integral;
    // Integrating while the actuator is at its stop would only have to be undone later.
    if ((output < 1.0 || error < 0.0) && (output > 0.0 || error > 0.0))
    {
        integral += gain * error * (step / resetTime);
    }
    return std::clamp(output, 0.0, 1.0);
}

} // namespace WaterTanks
