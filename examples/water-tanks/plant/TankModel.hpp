#pragma once

#include <array>
#include <chrono>
#include <cstddef>

namespace WaterTanks
{

/// Two tanks, one above the other: a pump fills the upper one, a valve lets its water into the lower one, and the
/// consumers drain that. Plain arithmetic, no thread, no clock of its own.
class TankModel
{
public:
    static constexpr std::size_t upper = 0;
    static constexpr std::size_t lower = 1;
    /// Metres; a tank that is full overflows, one that is empty gives nothing.
    static constexpr double height = 2.0;

    /// Advances the plant by a span of time.
    void Advance(std::chrono::duration<double> step);

    /// Share of the pump's capacity, 0 to 1.
    void SetPump(double share);
    /// Opening of the valve between the tanks, 0 to 1.
    void SetValve(double opening);

    [[nodiscard]] double GetLevel(std::size_t tank) const;
    [[nodiscard]] double GetPump() const;
    [[nodiscard]] double GetValve() const;
    /// What the consumers take at present, in litres per second.
    [[nodiscard]] double GetDemand() const;

private:
    std::array<double, 2> levels{1.0, 1.0};
    double pump = 0.5;
    double valve = 0.5;
    std::chrono::duration<double> time{0};
};

} // namespace WaterTanks
