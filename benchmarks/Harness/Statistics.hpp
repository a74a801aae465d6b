#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Vela::Benchmarks
{

using Clock = std::chrono::steady_clock;

/// Microseconds since a point in time.
double GetMicrosecondsSince(Clock::time_point start);

/// The value below which a share of the samples lies.
/// @param share  0.5: the median
double GetPercentile(std::vector<double> samples, double share);
double GetMedian(std::vector<double> samples);

/// How much is done: all of it, or just enough to see that it works.
struct Effort
{
    bool isQuick = false;

    [[nodiscard]] unsigned Choose(unsigned full, unsigned quick) const noexcept
    {
        return isQuick ? quick : full;
    }
};

/// Takes one sample, in whatever unit.
using Sampler = std::function<double()>;

/// Takes samples of several things in turns, so that what else happens on the machine meets all of them alike. A first
/// turn warms up and does not count. Progress goes to standard error.
/// @return per sampler its samples; the n-th samples of all were taken next to each other
std::vector<std::vector<double>> SampleInTurns(const std::string& what, unsigned rounds,
                                               const std::vector<Sampler>& samplers);

/// Samples the microseconds of one call, out of many in a row.
template <typename Call>
Sampler PerCall(unsigned count, Call call)
{
    return [=]
    {
        const auto start = Clock::now();
        for (unsigned i = 0; i < count; ++i)
        {
            call();
            // Keeps the calls apart, one after the other.
            asm volatile("" ::: "memory");
        }
        return GetMicrosecondsSince(start) / count;
    };
}

/// A measured value beside its floor.
struct Comparison
{
    /// Medians.
    double measured = 0;
    double floor = 0;
    /// Median of the rounds' ratios.
    double ratio = 0;
};

Comparison Compare(const std::vector<double>& measured, const std::vector<double>& floor);
Comparison Compare(const std::string& what, unsigned rounds, const Sampler& measured, const Sampler& floor);

} // namespace Vela::Benchmarks
