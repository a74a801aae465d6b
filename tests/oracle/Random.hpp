#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace Vela::Testing
{

/// Choices that follow from a seed, the same on every platform.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : engine(seed)
    {
    }

    /// A number from 0 to `limit` - 1.
    std::size_t Below(std::size_t limit)
    {
        return static_cast<std::size_t>(engine() % limit);
    }

    bool Chance(unsigned percent)
    {
        return engine() % 100 < percent;
    }

    template <typename T>
    const T& Pick(const std::vector<T>& choices)
    {
        return choices[Below(choices.size())];
    }

    /// Takes one of the choices out.
    template <typename T>
    T Draw(std::vector<T>& choices)
    {
        const auto chosen = choices.begin() + static_cast<std::ptrdiff_t>(Below(choices.size()));
        T value = *chosen;
        choices.erase(chosen);
        return value;
    }

private:
    std::mt19937_64 engine;
};

} // namespace Vela::Testing
