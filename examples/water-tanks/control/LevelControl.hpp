#pragma once

#include <chrono>

namespace WaterTanks
{

/// Holds a level at its setpoint: a proportional and integral controller whose output is 0 to 1.
class LevelControl
{
public:
    LevelControl(double levelSetpoint, double proportionalGain, std::chrono::duration<double> integralTime);

    /// The actuator's position for a measured level, `step` after the last one.
    double Update(double level, std::chrono::duration<double> step);

private:
    double setpoint;
    double gain;
    std::chrono::duration<double> resetTime;
    double integral = 0.5;
};

} // namespace WaterTanks
