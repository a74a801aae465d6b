#include "Harness/Statistics.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace Vela::Benchmarks
{

double GetMicrosecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double GetPercentile(std::vector<double> samples, double share)
{
    const auto last = static_cast<double>(samples.size() - 1);
    const auto place = samples.begin() + static_cast<std::ptrdiff_t>(std::lround(share * last));
    std::nth_element(samples.begin(), place, samples.end());
    return *place;
}

double GetMedian(std::vector<double> samples)
{
    return GetPercentile(std::move(samples), 0.5);
}

namespace
{

/// On a terminal one line that overwrites itself; elsewhere a line when something begins.
class Progress
{
public:
    Progress(std::string what, unsigned allRounds)
        : name(std::move(what))
        , rounds(allRounds)
    {
        if (!isTerminal)
        {
            std::cerr << name << std::endl;
        }
    }

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    ~Progress()
    {
        Show({});
    }

    void ShowRound(unsigned round) const
    {
        Show(fmt::format("{}: {}/{}", name, round, rounds));
    }

private:
    void Show(const std::string& text) const
    {
        if (isTerminal)
        {
            std::cerr << "\r\x1b[K" << text << std::flush;
        }
    }

    const bool isTerminal = ::isatty(STDERR_FILENO) != 0;
    const std::string name;
    const unsigned rounds;
};

} // namespace

std::vector<std::vector<double>> SampleInTurns(const std::string& what, unsigned rounds,
                                               const std::vector<Sampler>& samplers)
{
    const Progress progress(what, rounds);
    std::vector<std::vector<double>> samples(samplers.size());
    for (unsigned round = 0; round <= rounds; ++round)
    {
        progress.ShowRound(round);
        for (std::size_t i = 0; i < samplers.size(); ++i)
        {
            // Forth and back, so that nobody always comes first.
            const std::size_t turn = round % 2 == 0 ? i : samplers.size() - 1 - i;
            const double sample = samplers[turn]();
            if (round > 0)
            {
                samples[turn].push_back(sample);
            }
        }
    }
    return samples;
}

Comparison Compare(const std::vector<double>& measured, const std::vector<double>& floor)
{
    std::vector<double> ratios(measured.size());
    std::transform(measured.begin(), measured.end(), floor.begin(), ratios.begin(), std::divides<>());
    return {GetMedian(measured), GetMedian(floor), GetMedian(std::move(ratios))};
}

Comparison Compare(const std::string& what, unsigned rounds, const Sampler& measured, const Sampler& floor)
{
    const auto samples = SampleInTurns(what, rounds, {measured, floor});
    return Compare(samples[0], samples[1]);
}

} // namespace Vela::Benchmarks
